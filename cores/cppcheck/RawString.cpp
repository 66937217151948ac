#include "cppcheck/RawString.h"

#include "platform/Text.h"

namespace Orvanta {

namespace {

bool IsWordCharacter(char character) {
    const char lower = ToLowerAscii(character);
    return (lower >= 'a' && lower <= 'z') || IsDigit(character) || character == '_';
}

bool IsRawPrefix(std::string_view word) {
    return word == "R" || word == "u8R" || word == "uR" || word == "UR" || word == "LR";
}

// The place behind the literal that begins with a quote at `begin`.
std::size_t EndOfLiteral(std::string_view line, std::size_t begin) {
    std::size_t i = begin + 1;
    while (i < line.size() && line[i] != line[begin]) {
        i += line[i] == '\\' ? 2U : 1U;
    }
    return i + 1;
}

// The place behind a name or number; the quotes that group a number's digits belong to it.
std::size_t EndOfWord(std::string_view line, std::size_t begin) {
    std::size_t i = begin;
    while (i < line.size() && (IsWordCharacter(line[i]) || (line[i] == '\'' && IsDigit(line[begin])))) {
        ++i;
    }
    return i;
}

// What ends the raw string whose quote stands at `quote`; empty when it is none after all.
std::string RawStringEnd(std::string_view line, std::size_t quote) {
    const std::size_t open = line.find('(', quote);
    return open == std::string_view::npos ? "" : ")" + std::string(line.substr(quote + 1, open - quote - 1)) + "\"";
}

} // namespace

std::string EndOfOpenRawString(std::string_view line) {
    if (line.find("R\"") == std::string_view::npos) {
        return {};
    }
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == '"' || line[i] == '\'') {
            i = EndOfLiteral(line, i);
            continue;
        }
        if (!IsWordCharacter(line[i])) {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        i = EndOfWord(line, begin);
        if (!IsRawPrefix(line.substr(begin, i - begin)) || !line.substr(i).starts_with('"')) {
            continue;
        }
        std::string end = RawStringEnd(line, i);
        const std::size_t close = line.find(end, i);
        if (close == std::string_view::npos) {
            return end;
        }
        i = end.empty() ? EndOfLiteral(line, i) : close + end.size();
    }
    return {};
}

} // namespace Orvanta
