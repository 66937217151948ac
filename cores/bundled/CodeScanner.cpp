#include "bundled/CodeScanner.h"

#include "platform/Text.h"

#include <utility>

namespace Orvanta {

namespace {

bool IsRawPrefix(std::string_view word) {
    // Any other word in front of a quote, such as "L", belongs to a usual literal.
    return word == "R" || word == "u8R" || word == "uR" || word == "UR" || word == "LR";
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

bool IsWordCharacter(char character) {
    const char lower = ToLowerAscii(character);
    return (lower >= 'a' && lower <= 'z') || IsDigit(character) || character == '_';
}

std::size_t EndOfLiteral(std::string_view text, std::size_t begin) {
    std::size_t i = begin + 1;
    while (i < text.size() && text[i] != text[begin]) {
        // An escaped quote ends nothing.
        i += text[i] == '\\' ? 2U : 1U;
    }
    return i + 1;
}

void CodeScanner::Read(std::string_view line) {
    std::size_t i = 0;
    if (IsInRawString()) {
        i = line.find(rawStringEnd_);
        // The whole line lies within the raw string, whatever it looks like.
        if (i == std::string_view::npos) {
            return;
        }
        i += rawStringEnd_.size();
        rawStringEnd_.clear();
    }
    while (i < line.size()) {
        const char character = line[i];
        if (character == '"' || character == '\'') {
            i = EndOfLiteral(line, i);
        } else if (IsWordCharacter(character)) {
            i = ReadWord(line, i);
        } else {
            // A closing parenthesis alone belongs to text that was left out.
            openParentheses_ += character == '(' ? 1U : 0U;
            openParentheses_ -= character == ')' && openParentheses_ > 0 ? 1U : 0U;
            ++i;
        }
    }
}

std::size_t CodeScanner::ReadWord(std::string_view line, std::size_t begin) {
    const std::size_t end = EndOfWord(line, begin);
    const bool isRaw = line.substr(end).starts_with('"') && IsRawPrefix(line.substr(begin, end - begin));
    return isRaw ? ReadRawString(line, end) : end;
}

// The place behind the raw string whose quote stands at `quote`, or the end of the line.
std::size_t CodeScanner::ReadRawString(std::string_view line, std::size_t quote) {
    const std::size_t open = line.find('(', quote);
    if (open == std::string_view::npos) {
        return EndOfLiteral(line, quote); // none after all
    }
    // What the writer has put between the quote and the parenthesis ends the string too.
    std::string end = ")";
    end.append(line.substr(quote + 1, open - quote - 1)).append("\"");
    const std::size_t close = line.find(end, open);
    if (close != std::string_view::npos) {
        return close + end.size();
    }
    rawStringEnd_ = std::move(end);
    return line.size();
}

} // namespace Orvanta
