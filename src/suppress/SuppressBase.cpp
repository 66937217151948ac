#include "suppress/SuppressBase.h"

#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Table.h"
#include "report/Exceptions.h"
#include "report/JsonText.h"
#include "report/Utf8.h"
#include "report/WholeFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <functional>
#include <istream>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

namespace {

using Json = nlohmann::json;

constexpr std::uint32_t VersionOfBasesWithoutOne = 1;

/// The members of an entry, in the order in which they are written.
struct FieldRow {
    const char* key;
    std::string SuppressEntry::*text;     // or
    std::uint32_t SuppressEntry::*number; // the one that is not null
};

constexpr FieldRow Fields[] = {
    {"FileName",    &SuppressEntry::fileName,  nullptr                    },
    {"ErrorCode",   &SuppressEntry::errorCode, nullptr                    },
    {"Message",     &SuppressEntry::message,   nullptr                    },
    {"CodePrev",    nullptr,                   &SuppressEntry::codePrev   },
    {"CodeCurrent", nullptr,                   &SuppressEntry::codeCurrent},
    {"CodeNext",    nullptr,                   &SuppressEntry::codeNext   },
};

/// Receives the events of a base's document. Values that are no part of a base are passed over.
class BaseHandler {
public:
    using TakeEntry = std::function<void(SuppressEntry entry)>;

    explicit BaseHandler(TakeEntry takeEntry) : takeEntry_(std::move(takeEntry)) {}

    [[nodiscard]] std::uint32_t Version() const { return version_.value_or(VersionOfBasesWithoutOne); }

    [[nodiscard]] std::size_t Entry() const { return isInWarnings_ ? entryNumber_ : 0; }

    bool null() { return TakeOther("null"); }

    bool boolean(bool) { return TakeOther("boolean"); }

    bool number_integer(Json::number_integer_t value) {
        if (IsNumberWanted()) {
            throw ParseException("number out of range: " + std::to_string(value));
        }
        return TakeOther("number");
    }

    bool number_unsigned(Json::number_unsigned_t value) {
        if (!IsNumberWanted()) {
            return TakeOther("number");
        }
        if (value > std::numeric_limits<std::uint32_t>::max()) {
            throw ParseException("number out of range: " + std::to_string(value));
        }
        if (depth_ == RootDepth) {
            version_ = static_cast<std::uint32_t>(value);
        } else {
            MarkSeen();
            entry_.*field_->number = static_cast<std::uint32_t>(value);
        }
        return true;
    }

    bool number_float(Json::number_float_t, const std::string& text) {
        if (IsNumberWanted()) {
            throw ParseException("number out of range: " + text);
        }
        return TakeOther("number");
    }

    bool string(std::string& value) {
        if (field_ == nullptr || field_->text == nullptr) {
            return TakeOther("string");
        }
        MarkSeen();
        entry_.*field_->text = std::move(value);
        return true;
    }

    bool binary(Json::binary_t&) { return TakeOther("binary"); }

    bool start_object(std::size_t) {
        if (depth_ != 0 && !(depth_ == ListDepth && isInWarnings_)) {
            TakeOther("object");
        }
        if (depth_ == ListDepth && isInWarnings_) {
            ++entryNumber_;
            entry_ = {};
            seen_ = 0;
        }
        ++depth_;
        return true;
    }

    bool key(std::string& name) {
        if (depth_ == RootDepth) {
            rootKey_ = name;
        } else if (depth_ == EntryDepth && isInWarnings_) {
            field_ = Orvanta::FindRow(Fields, &FieldRow::key, name);
        }
        return true;
    }

    bool end_object() {
        --depth_;
        if (depth_ == ListDepth && isInWarnings_) {
            RequireAllFields();
            field_ = nullptr;
            takeEntry_(std::move(entry_));
        }
        return true;
    }

    bool start_array(std::size_t) {
        if (depth_ == RootDepth && rootKey_ == "warnings") {
            isInWarnings_ = hasWarnings_ = true;
        } else {
            TakeOther("array");
        }
        ++depth_;
        return true;
    }

    bool end_array() {
        --depth_;
        isInWarnings_ = isInWarnings_ && depth_ != RootDepth;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) {
        isInWarnings_ = false; // the text says where
        throw ParseException(error.what());
    }

    void RequireWarnings() const {
        if (!hasWarnings_) {
            throw ParseException("field warnings is not found");
        }
    }

private:
    // How many objects and lists are open where something stands.
    static constexpr std::size_t RootDepth = 1;
    static constexpr std::size_t ListDepth = 2;
    static constexpr std::size_t EntryDepth = 3;

    [[nodiscard]] bool IsNumberWanted() const {
        return (depth_ == RootDepth && rootKey_ == "version") ||
               (depth_ == EntryDepth && field_ != nullptr && field_->number != nullptr);
    }

    // A value of another type than the one that is wanted here; nothing may be wanted.
    bool TakeOther(const std::string& type) {
        const char* wanted = nullptr;
        if (depth_ == 0 || (depth_ == ListDepth && isInWarnings_)) {
            wanted = "object";
        } else if (depth_ == RootDepth && rootKey_ == "warnings") {
            wanted = "array";
        } else if (IsNumberWanted()) {
            wanted = "number";
        } else if (depth_ == EntryDepth && field_ != nullptr) {
            wanted = "string";
        }
        if (wanted != nullptr) {
            if (depth_ == ListDepth) {
                ++entryNumber_;
            }
            throw ParseException(std::string("type must be ") + wanted + ", but is " + type);
        }
        return true;
    }

    void MarkSeen() { seen_ |= 1U << static_cast<unsigned>(field_ - std::begin(Fields)); }

    void RequireAllFields() const {
        for (std::size_t index = 0; index < std::size(Fields); ++index) {
            if ((seen_ & 1U << index) == 0) {
                throw ParseException(std::string("field ") + Fields[index].key + " is not found");
            }
        }
    }

    TakeEntry takeEntry_;
    std::optional<std::uint32_t> version_;
    std::size_t depth_ = 0;
    std::string rootKey_;
    bool isInWarnings_ = false;
    bool hasWarnings_ = false;
    SuppressEntry entry_;
    std::size_t entryNumber_ = 0;
    unsigned seen_ = 0;               // one bit for each field
    const FieldRow* field_ = nullptr; // of the value to come
};

void AppendEntry(std::string& line, const SuppressEntry& entry) {
    line += '{';
    for (const FieldRow& row : Fields) {
        line += &row == Fields ? "\"" : ", \"";
        line += row.key;
        line += "\": ";
        if (row.text != nullptr) {
            AppendJsonString(line, entry.*row.text);
        } else {
            line += std::to_string(entry.*row.number);
        }
    }
    line += '}';
}

WholeFile OpenBase(const std::string& path) {
    try {
        return WholeFile(path);
    } catch (const FilesystemException&) {
        throw FilesystemException("File doesn't exists: " + path);
    }
}

} // namespace

SuppressBase SuppressBase::Read(const std::string& path) {
    if (Orvanta::LookAt(path).kind == Orvanta::PathKind::Folder) {
        throw FilesystemException(path + " is a directory");
    }
    std::ifstream file(Orvanta::NativePath(path), std::ios::binary);
    if (!file.is_open()) {
        throw FilesystemException("Couldn't open file " + path);
    }
    SuppressBase base = Parse(file, path);
    if (file.bad()) {
        throw FilesystemException("Couldn't read file " + path);
    }
    return base;
}

SuppressBase SuppressBase::Parse(std::istream& text, const std::string& name) {
    SuppressBase base;
    BaseHandler handler([&base](SuppressEntry entry) { base.Add(std::move(entry)); });
    try {
        Utf8Buffer buffer(text);
        std::istream stream(&buffer);
        Json::sax_parse(stream, &handler);
        handler.RequireWarnings();
    } catch (const ParseException& error) {
        const std::string entry = handler.Entry() == 0 ? "" : ", entry " + std::to_string(handler.Entry());
        throw ParseException(name + entry + ": " + error.what());
    }
    base.version_ = handler.Version();
    return base;
}

void SuppressBase::Write(const std::string& path) const {
    std::vector<const SuppressEntry*> sorted;
    sorted.reserve(entries_.size());
    for (const SuppressEntry& entry : entries_) {
        sorted.push_back(&entry);
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const SuppressEntry* left, const SuppressEntry* right) { return *left < *right; });

    WholeFile file = OpenBase(path);
    file.Append("{\"version\": " + std::to_string(version_) + ", \"warnings\": [");
    std::string line;
    for (const SuppressEntry* const entry : sorted) {
        line = entry == sorted.front() ? "\n" : ",\n";
        AppendEntry(line, *entry);
        file.Append(line);
    }
    file.Append("\n]}\n");
    file.Commit();
}

} // namespace OrvlogConverter
