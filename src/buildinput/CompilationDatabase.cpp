#include "buildinput/CompilationDatabase.h"

#include "buildinput/VariableName.h"
#include "platform/BlockReader.h"
#include "platform/Files.h"
#include "platform/InputFile.h"
#include "platform/JsonEvents.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace Orvanta {

namespace {

using nlohmann::json;

// Bytes of text that are gathered before they are written.
constexpr std::size_t BlockSize = std::size_t{64} << 10U;

/// A member that is to be a text: the type that it has (empty: it is absent) and, if that is right, the text.
struct TextMember {
    std::string_view type;
    std::string text;

    /// Copies into the text's own memory. The text of a member of another type is what it was, and is not looked at.
    void Assign(std::string_view newType, const std::string* newText) {
        type = newType;
        if (newText != nullptr) {
            text = *newText;
        }
    }
};

enum class Member { Other, Directory, Command, Arguments, Environment };

struct MemberName {
    std::string_view name;
    Member member;
};

// "file" and "output" are not read: the command itself tells its sources, and the two may differ.
constexpr MemberName MemberNames[] = {
    {"directory", Member::Directory},
    {"command", Member::Command},
    {"arguments", Member::Arguments},
    {"environment", Member::Environment},
};

/// An entry as far as it is read. Used again for the next one, so that its strings keep their memory.
struct Entry {
    TextMember directory;
    TextMember command;
    std::string_view argumentsType;     // empty: absent
    std::string_view wrongArgumentType; // of the first argument that is no text; empty: all are
    std::vector<std::string> arguments; // those of this entry and, beyond argumentCount, strings to use again
    std::size_t argumentCount = 0;
    std::string_view environmentType; // empty: absent
    std::map<std::string, TextMember> environment;

    /// Only the types go: an empty one says that the member is absent, and the memory of its text is used again.
    void Clear() { directory.type = command.type = argumentsType = environmentType = {}; }
};

/// What is wrong with the content: the library's error, as a document that is held whole would give it, and what to
/// look for in the file. Never leaves this file.
struct ContentFault {
    std::exception_ptr error;
    std::string what;
};

// As a message names a type.
std::string WithArticle(std::string_view type) {
    const bool hasVowel = type == JsonType::Array || type == JsonType::Object;
    return type == JsonType::Null ? std::string(type) : (hasVowel ? "an " : "a ") + std::string(type);
}

/// `what` is of the wrong type.
ContentFault TypeFault(const std::string& what, std::string_view expected, std::string_view found) {
    const std::string text = "type must be " + std::string(expected) + ", but is " + std::string(found);
    return {std::make_exception_ptr(json::type_error::create(302, text, nullptr)),
            what + " is " + WithArticle(found) + ", expected " + WithArticle(expected)};
}

/// `name` is how the file names the member. \throws ContentFault when it is absent or no text
const std::string& RequireText(const TextMember& member, const char* name) {
    if (member.type.empty()) {
        throw ContentFault{std::make_exception_ptr(json::invalid_iterator::create(214, "cannot get value", nullptr)),
                           std::string(name) + " is missing"};
    }
    if (member.type != JsonType::Text) {
        throw TypeFault(name, JsonType::Text, member.type);
    }
    return member.text;
}

/// The variables of an entry. Names that no shell could set are left out.
Environment TakeEnvironment(Entry& entry) {
    Environment variables;
    if (entry.environmentType.empty()) {
        return variables;
    }
    if (entry.environmentType != JsonType::Object) {
        throw TypeFault("\"environment\"", JsonType::Object, entry.environmentType);
    }
    for (const auto& [name, value] : entry.environment) {
        const std::string& text = RequireText(value, "a value in \"environment\"");
        if (IsVariableName(name)) {
            variables.emplace(name, text);
        }
    }
    return variables;
}

/// Takes the parser's events and hands each entry to the collector when it is complete. As in a document that is held
/// whole, of members of one name the last one counts, and a fault of the JSON text itself is told before one of its
/// content: so the first fault of the content is kept until the end.
class DatabaseHandler {
public:
    DatabaseHandler(CommandStringRules rules, InvocationCollector& collector) : rules_(rules), collector_(collector) {}

    // The parser's events.
    void TakeScalar(const JsonScalar& value) { TakeValue(value.type, nullptr); }

    void TakeText(const std::string& text) { TakeValue(JsonType::Text, &text); }

    void Open(std::string_view type);
    void Close(std::string_view type);
    void TakeKey(const std::string& name);

    /// \throws what was wrong with the content of the document
    void Finish();

    /// After a failure: which entry it was, and what was wrong with it, for a line that begins with the file.
    [[nodiscard]] std::string FaultText() const;

private:
    // What the parser is inside of. Values that nobody asks for are Skipped with all that is in them.
    enum class Place { Document, Entries, Entry, Arguments, Environment, Skipped };

    // A value, or the beginning of one, at the present place. The text is null for what is no text, and the library's:
    // it is copied where it is kept.
    void TakeValue(std::string_view type, const std::string* text);
    // Put a value into its place in the entry. A wrong type is kept with it, and told when the entry is complete.
    void TakeMember(std::string_view type, const std::string* text);
    void TakeArgument(std::string_view type, const std::string* text);
    [[nodiscard]] Place PlaceWithin(std::string_view type) const;
    // The entry is complete: hands it over, unless a fault was found already, and keeps the first fault.
    void FinishEntry();
    // \throws ContentFault for what is missing or of a wrong type
    void HandOver();
    // Keeps the first fault, with the present entry.
    void Keep(const ContentFault& fault);

    CommandStringRules rules_;
    InvocationCollector& collector_;
    Place place_ = Place::Document;
    Place placeAfterSkipping_ = Place::Document;
    std::size_t skippedDepth_ = 0;
    std::string_view documentType_;
    bool isEmpty_ = true; // the document has neither entries nor members
    Member member_ = Member::Other;
    TextMember* variable_ = nullptr; // of the entry's environment, the one whose value comes next
    Entry entry_;
    std::size_t entryNumber_ = 0; // from 1
    bool isRead_ = false;         // the whole document is JSON
    std::optional<ContentFault> firstFault_;
};

void DatabaseHandler::TakeKey(const std::string& name) {
    // An object with members is no empty database, but a wrong one.
    isEmpty_ = false;
    if (place_ == Place::Environment) {
        variable_ = &entry_.environment[name];
    } else if (place_ == Place::Entry) {
        const MemberName* const row = FindRow(MemberNames, &MemberName::name, name);
        member_ = row != nullptr ? row->member : Member::Other;
    }
}

void DatabaseHandler::Open(std::string_view type) {
    // Only the depth counts here: nothing inside is told apart.
    if (place_ == Place::Skipped) {
        ++skippedDepth_;
        return;
    }
    TakeValue(type, nullptr);
    const Place within = PlaceWithin(type);
    if (within == Place::Skipped) {
        placeAfterSkipping_ = place_;
        skippedDepth_ = 1;
    }
    place_ = within;
}

void DatabaseHandler::Close(std::string_view) {
    switch (place_) {
    case Place::Document:
        break; // nothing is open
    case Place::Entries:
        place_ = Place::Document;
        break;
    case Place::Entry:
        FinishEntry();
        place_ = Place::Entries;
        break;
    case Place::Arguments:
    case Place::Environment:
        place_ = Place::Entry;
        break;
    case Place::Skipped:
        if (--skippedDepth_ == 0) {
            place_ = placeAfterSkipping_;
        }
        break;
    }
}

/// Where the parser is inside an array or object that opens at the present place.
DatabaseHandler::Place DatabaseHandler::PlaceWithin(std::string_view type) const {
    if (place_ == Place::Document && type == JsonType::Array) {
        return Place::Entries;
    }
    if (place_ == Place::Entries && type == JsonType::Object) {
        return Place::Entry;
    }
    if (place_ == Place::Entry && member_ == Member::Arguments && type == JsonType::Array) {
        return Place::Arguments;
    }
    if (place_ == Place::Entry && member_ == Member::Environment && type == JsonType::Object) {
        return Place::Environment;
    }
    return Place::Skipped;
}

void DatabaseHandler::TakeValue(std::string_view type, const std::string* text) {
    switch (place_) {
    case Place::Document:
        documentType_ = type;
        break;
    case Place::Entries:
        isEmpty_ = false;
        entry_.Clear();
        ++entryNumber_;
        if (type != JsonType::Object) {
            Keep(TypeFault("it", JsonType::Object, type));
        }
        break;
    case Place::Entry:
        TakeMember(type, text);
        break;
    case Place::Arguments:
        TakeArgument(type, text);
        break;
    case Place::Environment:
        variable_->Assign(type, text);
        break;
    case Place::Skipped:
        break;
    }
}

void DatabaseHandler::TakeMember(std::string_view type, const std::string* text) {
    switch (member_) {
    case Member::Other:
        break;
    case Member::Directory:
        entry_.directory.Assign(type, text);
        break;
    case Member::Command:
        entry_.command.Assign(type, text);
        break;
    case Member::Arguments:
        // A second member of this name begins anew; the strings stay to be used again.
        entry_.argumentsType = type;
        entry_.wrongArgumentType = {};
        entry_.argumentCount = 0;
        break;
    case Member::Environment:
        entry_.environmentType = type;
        entry_.environment.clear();
        break;
    }
}

void DatabaseHandler::TakeArgument(std::string_view type, const std::string* text) {
    if (text == nullptr) {
        if (entry_.wrongArgumentType.empty()) {
            entry_.wrongArgumentType = type;
        }
        return;
    }
    if (entry_.argumentCount == entry_.arguments.size()) {
        entry_.arguments.emplace_back();
    }
    entry_.arguments[entry_.argumentCount++] = *text;
}

void DatabaseHandler::Keep(const ContentFault& fault) {
    if (!firstFault_) {
        firstFault_ = {fault.error, ", entry " + std::to_string(entryNumber_) + ": " + fault.what};
    }
}

void DatabaseHandler::FinishEntry() {
    if (firstFault_) {
        return;
    }
    try {
        HandOver();
    } catch (const ContentFault& fault) {
        Keep(fault);
    }
}

void DatabaseHandler::HandOver() {
    // Of several faults an entry tells the same one, however its members are sorted.
    const Environment environment = TakeEnvironment(entry_);
    const std::string& directory = RequireText(entry_.directory, "\"directory\"");
    // Where an entry has both, the words of "arguments" hold: nothing has to be guessed about their quoting.
    if (entry_.argumentsType.empty()) {
        const std::string& command = RequireText(entry_.command, "\"command\"");
        SplitCommandString(command, rules_, entry_.arguments);
        // What can't be split goes on without words: the collector refuses it by name.
        if (entry_.arguments.empty() && std::all_of(command.begin(), command.end(), IsWhiteSpace)) {
            entry_.arguments = {":"}; // a step that runs nothing, as ninja lists it
        }
    } else if (entry_.argumentsType != JsonType::Array) {
        throw TypeFault("\"arguments\"", JsonType::Array, entry_.argumentsType);
    } else if (!entry_.wrongArgumentType.empty()) {
        throw TypeFault("a value in \"arguments\"", JsonType::Text, entry_.wrongArgumentType);
    } else {
        entry_.arguments.resize(entry_.argumentCount);
    }
    collector_.AddInvocationFrom(entry_.arguments, directory, environment, EnvironmentScope::Changes);
}

void DatabaseHandler::Finish() {
    isRead_ = true;
    // An empty database is no fault of its text: builds that compile nothing write one.
    if (documentType_ == JsonType::Null ||
        (isEmpty_ && (documentType_ == JsonType::Array || documentType_ == JsonType::Object))) {
        throw NoCompilerInvocationsFound(NoCompilerInvocationsFound::Hint::None);
    }
    if (documentType_ != JsonType::Array) {
        const ContentFault fault = TypeFault("the database", JsonType::Array, documentType_);
        firstFault_ = {fault.error, ": " + fault.what};
    }
    if (firstFault_) {
        std::rethrow_exception(firstFault_->error);
    }
}

std::string DatabaseHandler::FaultText() const {
    // Told in any case where both are wrong: the content counts only in a text that is JSON to its end.
    constexpr const char* NoJson = "it is no valid JSON";
    if (isRead_) {
        return firstFault_ ? firstFault_->what : "";
    }
    if (entryNumber_ == 0) {
        return std::string(": ") + NoJson;
    }
    const bool isInside = place_ != Place::Document && place_ != Place::Entries;
    return (isInside ? ", entry " : ", behind entry ") + std::to_string(entryNumber_) + ": " + NoJson;
}

/// The directory is written as an absolute path: the file may be read from anywhere.
json ToJson(const CompileCommand& unit) {
    json entry = {
        {"arguments", unit.arguments.ToVector()},
        {"directory", *unit.absoluteDirectory},
        {"file", unit.SourceFile()},
    };
    // Left out when empty: databases have no such member of their own.
    if (!unit.environment->empty()) {
        entry["environment"] = *unit.environment;
    }
    return entry;
}

} // namespace

void ParseCompilationDatabase(std::istream& input, CommandStringRules rules, InvocationCollector& collector,
                              std::string* fault) {
    BlockReader reader(input);
    DatabaseHandler handler(rules, collector);
    try {
        // By events: a database of a large build would fill the memory as a tree.
        ReadJson(handler, BlockIterator(reader), BlockIterator());
        handler.Finish();
    } catch (const json::exception&) {
        if (fault != nullptr) {
            *fault = handler.FaultText();
        }
        throw;
    }
}

void ReadDatabaseFrom(std::istream& input, const std::string& path, InvocationCollector& collector) {
    std::string fault;
    try {
        ParseCompilationDatabase(input, HostCommandStringRules(), collector, &fault);
    } catch (const json::exception&) {
        EndWhenStopped(); // what was read is a part
        // The library knows neither the file nor the entry, and its words are shown as they are.
        collector.MessageLog().Line(path + fault);
        throw;
    }
}

bool ReadCompilationDatabase(const std::string& path, InvocationCollector& collector) {
    std::optional<InputStream> input;
    try {
        input.emplace(path);
    } catch (const FileException&) {
        return false;
    }
    ReadDatabaseFrom(*input, path, collector);
    return true;
}

void WriteCompilationDatabase(const std::string& path, const std::vector<CompileCommand>& units) {
    // Until the end the file at the path stays as it was: a reader never meets half a database.
    AtomicFile file(path);
    std::string text = "[";
    const CompileCommand* previous = nullptr;
    for (const CompileCommand& unit : units) {
        if (previous != nullptr && unit.invocation == previous->invocation) {
            continue; // another source of the same command
        }
        text += previous == nullptr ? "\n" : ",\n";
        // A byte that belongs to no UTF-8 is replaced: JSON can't say it.
        text += ToJson(unit).dump(-1, ' ', false, json::error_handler_t::replace);
        previous = &unit;
        if (text.size() >= BlockSize) {
            file.Append(text);
            text.clear();
        }
    }
    text += "\n]\n";
    file.Append(text);
    file.Commit();
}

} // namespace Orvanta
