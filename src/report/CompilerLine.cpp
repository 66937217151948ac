#include "report/CompilerLine.h"

#include "platform/Text.h"
#include "report/TextNumber.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace OrvlogConverter {

namespace {

struct KindRow {
    std::string_view word;
    std::uint32_t level;
};

// A row is tried only where the text behind the word fits too, so "warn" doesn't hide "warning".
constexpr KindRow Kinds[] = {
    {"note", 3},
    {"warn", 2},
    {"warning", 2},
    {"error", 1},
};

// Takes the character off the front; false, with the text as it is, when another stands there.
bool TakeCharacter(std::string_view& text, char character) {
    if (text.empty() || text.front() != character) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

// Takes the digits off the front, which may be none.
std::string_view TakeDigits(std::string_view& text) {
    std::size_t count = 0;
    while (count < text.size() && Orvanta::IsDigit(text[count])) {
        ++count;
    }
    const std::string_view digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

// Takes blanks off the front, and no other white space.
void SkipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

// What stands behind the file name.
struct Tail {
    std::string_view lineDigits;
    std::uint32_t level = 0;
    std::string_view message;
};

// `text` begins at the colon before the line number.
std::optional<Tail> ReadTail(std::string_view text) {
    Tail tail;
    if (!TakeCharacter(text, ':') || (tail.lineDigits = TakeDigits(text)).empty() || !TakeCharacter(text, ':') ||
        TakeDigits(text).empty() || !TakeCharacter(text, ':')) {
        return std::nullopt;
    }
    SkipBlanks(text);
    for (const KindRow& row : Kinds) {
        std::string_view rest = text;
        if (rest.substr(0, row.word.size()) != row.word) {
            continue;
        }
        rest.remove_prefix(row.word.size());
        SkipBlanks(rest);
        if (TakeCharacter(rest, ':')) {
            SkipBlanks(rest);
            tail.level = row.level;
            tail.message = rest;
            return tail;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<ReportMessage> ReadCompilerLine(std::string_view line) {
    // A line end inside would become part of the file's name or of the text.
    if (line.find_first_of("\r\n") != std::string_view::npos) {
        return std::nullopt;
    }
    // The file name is the longest that leaves a tail. Each colon looks at no more than two runs of digits and two of
    // blanks behind it, so every character is read a few times at most.
    for (std::size_t colon = line.rfind(':'); colon != 0 && colon != std::string_view::npos;
         colon = line.rfind(':', colon - 1)) {
        const std::optional<Tail> tail = ReadTail(line.substr(colon));
        if (!tail) {
            continue;
        }
        // The column is read and dropped: the record has no place for it.
        MessagePosition position;
        position.file = line.substr(0, colon);
        position.line = ParseNumber(tail->lineDigits);
        ReportMessage message;
        message.code = "External";
        message.message = tail->message;
        message.level = tail->level;
        message.positions.push_back(std::move(position));
        return message;
    }
    return std::nullopt;
}

} // namespace OrvlogConverter
