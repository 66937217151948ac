#include "bundled/TypeChecks.h"

#include "bundled/CodeScanner.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace Orvanta {

namespace {

constexpr std::string_view ConstantQuestion = "__builtin_constant_p";
constexpr std::string_view TypeQuestion = "__builtin_types_compatible_p";
constexpr std::string_view Blanks = " \t\r\n";

constexpr std::size_t None = std::string_view::npos;

// The place of what stands there or behind, or the text's end.
std::size_t SkipBlanks(std::string_view text, std::size_t from) {
    return std::min(text.find_first_not_of(Blanks, from), text.size());
}

// The place behind the bracket that closes the one at `open`; None where there is no such bracket.
std::size_t EndOfBrackets(std::string_view text, std::size_t open) {
    std::size_t depth = 0;
    for (std::size_t i = open; i < text.size();) {
        const char character = text[i];
        if (character == '"' || character == '\'') {
            i = EndOfLiteral(text, i);
            continue;
        }
        if (character == '(' || character == '{') {
            ++depth;
        } else if ((character == ')' || character == '}') && --depth == 0) {
            return i + 1;
        }
        ++i;
    }
    return None;
}

// Where the `if` begins that has the word at `question` as the first of its condition; None where there is none.
std::size_t BeginOfIf(std::string_view text, std::size_t question) {
    const std::size_t open = text.find_last_not_of(Blanks, question - 1);
    if (question == 0 || open == None || open == 0 || text[open] != '(') {
        return None;
    }
    const std::size_t last = text.find_last_not_of(Blanks, open - 1);
    if (last == None || last < 1 || text.substr(last - 1, 2) != "if") {
        return None;
    }
    const std::size_t begin = last - 1;
    return begin == 0 || Blanks.find(text[begin - 1]) != None || text[begin - 1] == ';' || text[begin - 1] == '{'
               ? begin
               : None;
}

// The end of the statement that begins with `if (__builtin_constant_p(...)) {`, when it is a check of types and nothing
// else; None when it is not.
std::size_t EndOfTypeCheck(std::string_view text, std::size_t begin, std::size_t question) {
    const std::size_t arguments = SkipBlanks(text, question + ConstantQuestion.size());
    if (!text.substr(arguments).starts_with('(')) {
        return None;
    }
    const std::size_t endOfArguments = EndOfBrackets(text, arguments);
    const std::size_t endOfCondition = EndOfBrackets(text, text.find('(', begin));
    // More in the condition than the question may have an effect.
    if (endOfArguments == None || endOfCondition == None || SkipBlanks(text, endOfArguments) + 1 != endOfCondition) {
        return None;
    }
    const std::size_t block = SkipBlanks(text, endOfCondition);
    if (!text.substr(block).starts_with('{')) {
        return None;
    }
    const std::size_t end = EndOfBrackets(text, block);
    if (end == None || text.substr(SkipBlanks(text, end)).starts_with("else")) {
        return None;
    }
    const std::string_view statement = text.substr(begin, end - begin);
    const bool hasRawString = statement.find("R\"") != None;
    return statement.find(TypeQuestion) != None && !hasRawString ? end : None;
}

// Blanks the lines from `begin` to `end`, but for line markers: what is left stands where it stood.
void BlankLines(std::string& text, std::size_t begin, std::size_t end) {
    for (std::size_t at = begin; at < end;) {
        const std::size_t endOfLine = std::min(text.find('\n', at), end);
        if (text[at] != '#' || at == begin) {
            std::fill(text.begin() + static_cast<std::ptrdiff_t>(at),
                      text.begin() + static_cast<std::ptrdiff_t>(endOfLine), ' ');
        }
        at = endOfLine + 1;
    }
}

} // namespace

void BlankTypeChecks(std::string& text) {
    for (std::size_t at = text.find(ConstantQuestion); at != None; at = text.find(ConstantQuestion, at + 1)) {
        const std::size_t begin = BeginOfIf(text, at);
        const std::size_t end = begin == None ? None : EndOfTypeCheck(text, begin, at);
        if (end == None) {
            continue;
        }
        BlankLines(text, begin, end);
        text[begin] = ';';
        at = end - 1;
    }
}

} // namespace Orvanta
