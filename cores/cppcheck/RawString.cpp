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

} // namespace

std::string EndOfOpenRawString(std::string_view line) {
    if (line.find("R\"") == std::string_view::npos) {
        return {};
    }
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == '"' || line[i] == '\'') {
            i = EndOfLiteral(line, i);
        } else if (!IsWordCharacter(line[i])) {
            ++i;
        } else {
            const std::size_t end = EndOfWord(line, i);
            const bool isRaw = IsRawPrefix(line.substr(i, end - i)) && line.substr(end).starts_with('"');
            const std::size_t open = isRaw ? line.find('(', end) : std::string_view::npos;
            i = end;
            if (open != std::string_view::npos) {
                const std::string terminator = ")" + std::string(line.substr(end + 1, open - end - 1)) + "\"";
                const std::size_t close = line.find(terminator, open);
                if (close == std::string_view::npos) {
                    return terminator;
                }
                i = close + terminator.size();
            }
        }
    }
    return {};
}

} // namespace Orvanta
