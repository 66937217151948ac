#include "suppress/SuppressBase.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/InputFile.h"
#include "platform/JsonEvents.h"
#include "platform/Table.h"
#include "report/Exceptions.h"
#include "report/JsonCopy.h"
#include "report/JsonText.h"
#include "report/Utf8.h"
#include "report/WholeFile.h"

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

// A base that does not say by which rules it was made is one of the first.
constexpr std::uint32_t VersionOfBasesWithoutOne = 1;

// How many objects and lists are open where something stands.
constexpr std::size_t RootDepth = 1;
constexpr std::size_t ListDepth = 2;
constexpr std::size_t EntryDepth = 3;

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

/// An entry as far as it is read.
class EntryReading {
public:
    void Begin() { *this = {}; }

    /// The value to come is that of the member. False: no entry has such a field.
    bool Select(std::string_view key) {
        field_ = Orvanta::FindRow(Fields, &FieldRow::key, key);
        return field_ != nullptr;
    }

    [[nodiscard]] bool IsTextWanted() const { return field_ != nullptr && field_->text != nullptr; }

    [[nodiscard]] bool IsNumberWanted() const { return field_ != nullptr && field_->number != nullptr; }

    void SetText(std::string text) {
        MarkSeen();
        entry_.*field_->text = std::move(text);
    }

    void SetNumber(std::uint32_t number) {
        MarkSeen();
        entry_.*field_->number = number;
    }

    /// The members that are no field of an entry.
    [[nodiscard]] std::string& More() noexcept { return entry_.more; }

    /// An entry without one of the fields would hide other findings than the one it was made for.
    /// \throws ParseException for such a one
    [[nodiscard]] SuppressEntry Finish() {
        for (std::size_t index = 0; index < std::size(Fields); ++index) {
            if ((seen_ & 1U << index) == 0) {
                throw ParseException(std::string("field ") + Fields[index].key + " is not found");
            }
        }
        field_ = nullptr;
        return std::move(entry_);
    }

private:
    // A field that stands twice counts with its last value, as in any JSON object.
    void MarkSeen() { seen_ |= 1U << static_cast<unsigned>(field_ - std::begin(Fields)); }

    SuppressEntry entry_;
    unsigned seen_ = 0;               // one bit for each field
    const FieldRow* field_ = nullptr; // of the value to come
};

/// What a base holds beside its entries.
struct BaseHead {
    std::uint32_t version = VersionOfBasesWithoutOne;
    std::string members; ///< the document's other members, each behind ", "
};

/// Receives the events of a base's document. Members that are no part of a base are kept as they are.
class BaseHandler {
public:
    using TakeEntry = std::function<void(SuppressEntry entry)>;

    explicit BaseHandler(TakeEntry takeEntry) : takeEntry_(std::move(takeEntry)) {}

    [[nodiscard]] const BaseHead& Head() const noexcept { return head_; }

    // The number, from 1, of the entry that is being read; 0 outside of them. For messages.
    [[nodiscard]] std::size_t Entry() const { return isInWarnings_ ? entryNumber_ : 0; }

    // The parser's events.

    // A value that no part of a base is made of is fine in a copy, where the text counts, whatever a number's size.
    void TakeScalar(const Orvanta::JsonScalar& value) {
        if (copy_.IsOpen()) {
            copy_.Scalar(value.text);
        } else if (value.type == Orvanta::JsonType::Number && IsNumberWanted()) {
            TakeNumber(value);
        } else {
            RequireNothingElse(value.type);
        }
    }

    void TakeText(std::string& value) {
        if (copy_.IsOpen()) {
            copy_.Text(value);
        } else if (entry_.IsTextWanted()) {
            entry_.SetText(std::move(value));
        } else {
            RequireNothingElse(Orvanta::JsonType::Text);
        }
    }

    // The document itself, its list, an entry, or part of a copy; anywhere else it is an error or passed over.
    void Open(std::string_view type) {
        const bool isObject = type == Orvanta::JsonType::Object;
        if (copy_.IsOpen()) {
            copy_.Open(isObject ? '{' : '[');
            return;
        }
        if (isObject && depth_ == ListDepth && isInWarnings_) {
            ++entryNumber_;
            entry_.Begin();
        } else if (!isObject && depth_ == RootDepth && rootKey_ == "warnings") {
            isInWarnings_ = hasWarnings_ = true;
        } else if (!isObject || depth_ != 0) {
            RequireNothingElse(type);
        }
        ++depth_;
    }

    // Decides what the value to come is: a field, the list of entries, or what people have added, which is copied.
    void TakeKey(const std::string& name) {
        if (copy_.IsOpen()) {
            copy_.Key(name);
        } else if (depth_ == RootDepth) {
            rootKey_ = name;
            if (name != "warnings" && name != "version") {
                BeginCopy(head_.members, name);
            }
        } else if (depth_ == EntryDepth && isInWarnings_ && !entry_.Select(name)) {
            BeginCopy(entry_.More(), name);
        }
    }

    // An entry that is whole goes on at once: only the set of them holds it.
    void Close(std::string_view type) {
        const bool isObject = type == Orvanta::JsonType::Object;
        if (copy_.IsOpen()) {
            copy_.Close(isObject ? '}' : ']');
            return;
        }
        --depth_;
        if (isObject && depth_ == ListDepth && isInWarnings_) {
            takeEntry_(entry_.Finish());
        } else if (!isObject) {
            isInWarnings_ = isInWarnings_ && depth_ != RootDepth;
        }
    }

    // A document without the list is some other JSON file, named by mistake: it must not be written over as a base.
    void RequireWarnings() const {
        if (!hasWarnings_) {
            throw ParseException("field warnings is not found");
        }
    }

private:
    // Whether the value to come is the version, or a field that is a number.
    [[nodiscard]] bool IsNumberWanted() const {
        return (depth_ == RootDepth && rootKey_ == "version") || (depth_ == EntryDepth && entry_.IsNumberWanted());
    }

    // A number where one is wanted; some no field can hold, such as a fraction.
    void TakeNumber(const Orvanta::JsonScalar& value) {
        if (!value.number || *value.number > std::numeric_limits<std::uint32_t>::max()) {
            throw ParseException("number out of range: " + value.text);
        }
        const auto number = static_cast<std::uint32_t>(*value.number);
        if (depth_ == RootDepth) {
            head_.version = number;
        } else {
            entry_.SetNumber(number);
        }
    }

    // The next value's text goes behind its key into `members`.
    void BeginCopy(std::string& members, const std::string& name) {
        members += ", ";
        AppendJsonString(members, name);
        members += ": ";
        copy_.Begin(members);
    }

    // For a value of this type: another one may be wanted here.
    void RequireNothingElse(std::string_view type) {
        std::string_view wanted;
        if (depth_ == 0 || (depth_ == ListDepth && isInWarnings_)) {
            wanted = Orvanta::JsonType::Object;
        } else if (depth_ == RootDepth && rootKey_ == "warnings") {
            wanted = Orvanta::JsonType::Array;
        } else if (IsNumberWanted()) {
            wanted = Orvanta::JsonType::Number;
        } else if (depth_ == EntryDepth && entry_.IsTextWanted()) {
            wanted = Orvanta::JsonType::Text;
        }
        if (!wanted.empty()) {
            entryNumber_ += depth_ == ListDepth ? 1 : 0;
            throw ParseException("type must be " + std::string(wanted) + ", but is " + std::string(type));
        }
    }

    TakeEntry takeEntry_;
    BaseHead head_;
    std::size_t depth_ = 0; // of what is no part of a copy
    JsonCopy copy_;         // of a member that is no part of a base
    std::string rootKey_;
    bool isInWarnings_ = false;
    bool hasWarnings_ = false;
    EntryReading entry_;
    std::size_t entryNumber_ = 0;
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
        Orvanta::ReadJson(handler, stream);
        handler.RequireWarnings();
    } catch (const nlohmann::json::exception& error) {
        throw ParseException(name + ": " + error.what()); // which says where
    } catch (const ParseException& error) {
        const std::string entry = handler.Entry() == 0 ? "" : ", entry " + std::to_string(handler.Entry());
        throw ParseException(name + entry + ": " + error.what());
    }
    base.version_ = handler.Head().version;
    base.members_ = handler.Head().members;
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
