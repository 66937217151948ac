#include "suppress/SuppressBase.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/InputFile.h"
#include "platform/Table.h"
#include "report/Exceptions.h"
#include "report/JsonCopy.h"
#include "report/JsonText.h"
#include "report/Utf8.h"
#include "report/WholeFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
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

// A base that does not say by which rules it was made is one of the first.
constexpr std::uint32_t VersionOfBasesWithoutOne = 1;

/// The members of an entry, in the order in which they are written.
struct FieldRow {
    const char* key;
    std::string SuppressEntry::*text;     // or
    std::uint32_t SuppressEntry::*number; // the one that is not null
};

constexpr FieldRow Fields[] = {
    {"FileName", &SuppressEntry::fileName, nullptr},       {"ErrorCode", &SuppressEntry::errorCode, nullptr},
    {"Message", &SuppressEntry::message, nullptr},         {"CodePrev", nullptr, &SuppressEntry::codePrev},
    {"CodeCurrent", nullptr, &SuppressEntry::codeCurrent}, {"CodeNext", nullptr, &SuppressEntry::codeNext},
};

/// Receives the events of a base's document. Members that are no part of a base are kept as they are.
class BaseHandler {
public:
    using TakeEntry = std::function<void(SuppressEntry entry)>;

    explicit BaseHandler(TakeEntry takeEntry) : takeEntry_(std::move(takeEntry)) {}

    [[nodiscard]] std::uint32_t Version() const { return version_.value_or(VersionOfBasesWithoutOne); }

    /// The document's other members, each behind ", ".
    [[nodiscard]] std::string Members() const { return members_; }

    // The number, from 1, of the entry that is being read; 0 outside of them. For messages.
    [[nodiscard]] std::size_t Entry() const { return isInWarnings_ ? entryNumber_ : 0; }

    // The parser's events. All return true, which has it go on: what is wrong is thrown.
    bool null() { return TakeScalar("null", "null"); }

    bool boolean(bool value) { return TakeScalar("boolean", value ? "true" : "false"); }

    // Only negative ones come here, and no field is negative.
    bool number_integer(Json::number_integer_t value) { return TakeNumber(std::to_string(value), std::nullopt); }

    bool number_unsigned(Json::number_unsigned_t value) { return TakeNumber(std::to_string(value), value); }

    bool number_float(Json::number_float_t, const std::string& text) { return TakeNumber(text, std::nullopt); }

    // A text, as the value of a field or as part of a copy.
    bool string(std::string& value) {
        if (copy_.IsOpen()) {
            copy_.Text(value);
            return true;
        }
        if (field_ == nullptr || field_->text == nullptr) {
            RequireNothingElse("string");
            return true;
        }
        MarkSeen();
        entry_.*field_->text = std::move(value);
        return true;
    }

    bool binary(Json::binary_t&) { return TakeScalar("binary", "null"); }

    // The document itself, an entry, or part of a copy; an object anywhere else is an error or passed over.
    bool start_object(std::size_t) {
        if (copy_.IsOpen()) {
            copy_.Open('{');
            return true;
        }
        if (depth_ != 0 && !(depth_ == ListDepth && isInWarnings_)) {
            RequireNothingElse("object");
        }
        if (depth_ == ListDepth && isInWarnings_) {
            ++entryNumber_;
            entry_ = {};
            seen_ = 0;
        }
        ++depth_;
        return true;
    }

    // Decides what the value to come is: a field, the list of entries, or what people have added, which is copied.
    bool key(std::string& name) {
        if (copy_.IsOpen()) {
            copy_.Key(name);
        } else if (depth_ == RootDepth) {
            rootKey_ = name;
            if (name != "warnings" && name != "version") {
                BeginCopy(members_, name);
            }
        } else if (depth_ == EntryDepth && isInWarnings_) {
            field_ = Orvanta::FindRow(Fields, &FieldRow::key, name);
            if (field_ == nullptr) {
                BeginCopy(entry_.more, name);
            }
        }
        return true;
    }

    // An entry that is whole goes on at once: only the set of them holds it.
    bool end_object() {
        if (copy_.IsOpen()) {
            copy_.Close('}');
            return true;
        }
        --depth_;
        if (depth_ == ListDepth && isInWarnings_) {
            RequireAllFields();
            field_ = nullptr;
            takeEntry_(std::move(entry_));
        }
        return true;
    }

    // The list of entries, or part of a copy.
    bool start_array(std::size_t) {
        if (copy_.IsOpen()) {
            copy_.Open('[');
            return true;
        }
        if (depth_ == RootDepth && rootKey_ == "warnings") {
            isInWarnings_ = hasWarnings_ = true;
        } else {
            RequireNothingElse("array");
        }
        ++depth_;
        return true;
    }

    bool end_array() {
        if (copy_.IsOpen()) {
            copy_.Close(']');
            return true;
        }
        --depth_;
        isInWarnings_ = isInWarnings_ && depth_ != RootDepth;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) {
        isInWarnings_ = false; // the text says where
        throw ParseException(error.what());
    }

    // A document without the list is some other JSON file, named by mistake: it must not be written over as a base.
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

    // Whether the value to come is the version, or a field that is a number.
    [[nodiscard]] bool IsNumberWanted() const {
        return (depth_ == RootDepth && rootKey_ == "version") ||
               (depth_ == EntryDepth && field_ != nullptr && field_->number != nullptr);
    }

    // `value` is absent for what no field can hold, such as a fraction. In a copy the text counts, whatever its size.
    bool TakeNumber(const std::string& text, std::optional<Json::number_unsigned_t> value) {
        if (copy_.IsOpen() || !IsNumberWanted()) {
            return TakeScalar("number", text);
        }
        if (!value || *value > std::numeric_limits<std::uint32_t>::max()) {
            throw ParseException("number out of range: " + text);
        }
        if (depth_ == RootDepth) {
            version_ = static_cast<std::uint32_t>(*value);
        } else {
            MarkSeen();
            entry_.*field_->number = static_cast<std::uint32_t>(*value);
        }
        return true;
    }

    // A value that no part of a base is made of: fine in a copy, an error where something else is wanted.
    bool TakeScalar(const char* type, std::string_view json) {
        if (copy_.IsOpen()) {
            copy_.Scalar(json);
        } else {
            RequireNothingElse(type);
        }
        return true;
    }

    // The next value's text goes behind its key into `members`.
    void BeginCopy(std::string& members, const std::string& name) {
        members += ", ";
        AppendJsonString(members, name);
        members += ": ";
        copy_.Begin(members);
    }

    // For a value of this type: another one may be wanted here.
    void RequireNothingElse(const std::string& type) {
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
    }

    // A field that stands twice counts with its last value, as in any JSON object.
    void MarkSeen() { seen_ |= 1U << static_cast<unsigned>(field_ - std::begin(Fields)); }

    // An entry without one of them would hide other findings than the one it was made for.
    void RequireAllFields() const {
        for (std::size_t index = 0; index < std::size(Fields); ++index) {
            if ((seen_ & 1U << index) == 0) {
                throw ParseException(std::string("field ") + Fields[index].key + " is not found");
            }
        }
    }

    TakeEntry takeEntry_;
    std::optional<std::uint32_t> version_;
    std::size_t depth_ = 0; // of what is no part of a copy
    JsonCopy copy_;         // of a member that is no part of a base
    std::string members_;
    std::string rootKey_;
    bool isInWarnings_ = false;
    bool hasWarnings_ = false;
    SuppressEntry entry_;
    std::size_t entryNumber_ = 0;
    unsigned seen_ = 0;               // one bit for each field
    const FieldRow* field_ = nullptr; // of the value to come
};

// On one line, with the fields in the table's order: merges compare lines.
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
    line += entry.more;
    line += '}';
}

// The message is about the base, which the user has named, whatever file could not be made beside it.
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
    std::optional<Orvanta::InputStream> opened;
    try {
        opened.emplace(path);
    } catch (const Orvanta::FileException&) {
        throw FilesystemException("Couldn't open file " + path);
    }
    Orvanta::InputStream& file = *opened;
    // Editors of Windows may save it so; the JSON library would only say that a byte is wrong.
    RefuseUtf16(path, file);
    SuppressBase base;
    try {
        base = Parse(file, path);
    } catch (const ParseException&) {
        Orvanta::EndWhenStopped(); // what was read is a part
        throw;
    }
    if (file.bad()) {
        throw FilesystemException("Couldn't read file " + path);
    }
    return base;
}

SuppressBase SuppressBase::Parse(std::istream& text, const std::string& name) {
    SuppressBase base;
    BaseHandler handler([&base](SuppressEntry entry) { base.Add(std::move(entry)); });
    try {
        // A person's note may be in an old encoding: the base is read all the same.
        Utf8Buffer buffer(text);
        std::istream stream(&buffer);
        Json::sax_parse(stream, &handler);
        handler.RequireWarnings();
    } catch (const ParseException& error) {
        const std::string entry = handler.Entry() == 0 ? "" : ", entry " + std::to_string(handler.Entry());
        throw ParseException(name + entry + ": " + error.what());
    }
    base.version_ = handler.Version();
    base.members_ = handler.Members();
    return base;
}

void SuppressBase::Write(const std::string& path) const {
    // Sorted when it is written, not when it is read: most runs only ask.
    std::vector<const SuppressEntry*> sorted;
    sorted.reserve(entries_.size());
    for (const SuppressEntry& entry : entries_) {
        sorted.push_back(&entry);
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const SuppressEntry* left, const SuppressEntry* right) { return *left < *right; });

    WholeFile file = OpenBase(path);
    file.Append("{\"version\": " + std::to_string(version_) + members_ + ", \"warnings\": [");
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
