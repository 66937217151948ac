#include "report/RawLine.h"

#include "platform/Text.h"
#include "report/Exceptions.h"
#include "report/TextNumber.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace OrvlogConverter {

namespace {

constexpr std::string_view Separator = "<#~>";
// What a separator inside a text becomes: a reader that splits fields does not see it.
constexpr std::string_view BrokenSeparator = "<# ~>";
constexpr std::string_view Tag = "Zelm64-EM";
constexpr std::string_view CwePrefix = "CWE-";

// The fields of a line by their place: unscoped, since they are indices.
enum Field : std::size_t {
    TagField,
    ModeField,
    LineField,
    FileField,
    KindField,
    CodeField,
    MessageField,
    FalseAlarmField,
    LevelField,
    PrevLineField,
    CurrLineField,
    NextLineField,
    LinesField,
    StandardsField, // may be missing
    FieldCount,
};

using Fields = std::array<std::string_view, FieldCount>;

// The fields of a line, of which the last may be missing and is then empty. Throws for any other number of them.
Fields SplitFields(std::string_view line) {
    Fields fields;
    // Counted on to the line's end: one field too many is no message, rather than one with a longer last field.
    std::size_t count = 0;
    for (std::size_t end = 0; end != std::string_view::npos; ++count) {
        end = line.find(Separator);
        if (count == FieldCount) {
            throw ParseException("error parsing old format message");
        }
        fields[count] = line.substr(0, end);
        line.remove_prefix(end == std::string_view::npos ? line.size() : end + Separator.size());
    }
    if (count < StandardsField || fields[TagField] != Tag) {
        throw ParseException("error parsing old format message");
    }
    return fields;
}

// Takes the text up to the next comma off the front of `list`.
std::string_view TakeItem(std::string_view& list) {
    const std::string_view item = list.substr(0, list.find(','));
    list.remove_prefix(std::min(item.size() + 1, list.size()));
    return item;
}

// The list opens with the first position's own line.
void ReadFurtherPositions(ReportMessage& message, std::string_view lines) {
    // It is known from its own field.
    TakeItem(lines);
    while (!lines.empty()) {
        MessagePosition position;
        position.file = message.positions.front().file;
        position.line = ParseNumber(TakeItem(lines));
        message.positions.push_back(std::move(position));
    }
}

// The number of "CWE-N"; absent for any other item.
std::optional<std::uint32_t> CweOf(std::string_view item) {
    if (item.substr(0, CwePrefix.size()) != CwePrefix) {
        return std::nullopt;
    }
    item.remove_prefix(CwePrefix.size());
    const bool isNumber = !item.empty() && std::all_of(item.begin(), item.end(), Orvanta::IsDigit);
    return isNumber ? std::optional(ParseNumber(item)) : std::nullopt;
}

// The first CWE number counts; all else is the identifier of the further standard, which may hold commas of its own.
void ReadStandards(ReportMessage& message, std::string_view standards) {
    bool hasCwe = false;
    bool hasIdentifier = false;
    while (!standards.empty()) {
        const std::string_view item = TakeItem(standards);
        const std::optional<std::uint32_t> cwe = hasCwe ? std::nullopt : CweOf(item);
        if (cwe) {
            message.cwe = *cwe;
            hasCwe = true;
            continue;
        }
        if (std::exchange(hasIdentifier, true)) {
            message.sastId += ',';
        }
        message.sastId += item;
    }
}

// A text as a field: nothing in it may end the field or the line.
void AppendField(std::string& line, std::string_view text) {
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(Separator);
        const std::size_t start = line.size();
        line += text.substr(0, end);
        std::replace_if(
            line.begin() + static_cast<std::ptrdiff_t>(start), line.end(),
            [](char character) { return character == '\n' || character == '\r'; }, ' ');
        if (end != std::string_view::npos) {
            line += BrokenSeparator;
            text.remove_prefix(end + Separator.size());
        }
    }
}

// The lines of all positions, the first one's too. Empty when they lie in several files: the form has one file only.
void AppendLines(std::string& line, const std::vector<MessagePosition>& positions) {
    // Without regard to case: one file may be named in two ways by units of a system that does not regard it either.
    const auto isInFirstFile = [&positions](const MessagePosition& position) {
        return Orvanta::EqualsIgnoringCase(position.file, positions.front().file);
    };
    if (!std::all_of(positions.begin(), positions.end(), isInFirstFile)) {
        return;
    }
    for (const MessagePosition& position : positions) {
        if (&position != &positions.front()) {
            line += ", ";
        }
        line += std::to_string(position.line);
    }
}

// The last field: an empty one stands for no standard.
void AppendStandards(std::string& line, const ReportMessage& message) {
    if (message.cwe != 0) {
        line += CwePrefix;
        line += std::to_string(message.cwe);
    }
    if (message.cwe != 0 && !message.sastId.empty()) {
        line += ',';
    }
    AppendField(line, message.sastId);
}

} // namespace

ReportMessage ReadRawLine(std::string_view line) {
    const Fields fields = SplitFields(line);
    MessagePosition first;
    first.file = fields[FileField];
    first.line = ParseNumber(fields[LineField]);
    first.prevLine = fields[PrevLineField];
    first.currLine = fields[CurrLineField];
    first.nextLine = fields[NextLineField];

    ReportMessage message;
    message.code = fields[CodeField];
    message.message = fields[MessageField];
    // Any other word is a message that nobody has marked.
    message.falseAlarm = fields[FalseAlarmField] == "true";
    message.level = ParseNumber(fields[LevelField]);
    message.positions.push_back(std::move(first));
    ReadFurtherPositions(message, fields[LinesField]);
    ReadStandards(message, fields[StandardsField]);
    return message;
}

void AppendRawLine(std::string& text, const ReportMessage& message) {
    const MessagePosition& first = FirstPosition(message);
    // The fields that are the same in every line, and have no place in the record.
    text += "Zelm64-EM<#~>full<#~>";
    text += std::to_string(first.line);
    text += Separator;
    AppendField(text, first.file);
    text += "<#~>error<#~>";
    AppendField(text, message.code);
    text += Separator;
    AppendField(text, message.message);
    text += Separator;
    text += message.falseAlarm ? "true" : "false";
    text += Separator;
    text += std::to_string(message.level);
    for (const std::string* line : {&first.prevLine, &first.currLine, &first.nextLine}) {
        text += Separator;
        AppendField(text, *line);
    }
    text += Separator;
    AppendLines(text, message.positions);
    text += Separator;
    AppendStandards(text, message);
}

} // namespace OrvlogConverter
