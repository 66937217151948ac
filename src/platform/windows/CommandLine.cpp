#include "platform/windows/CommandLine.h"

namespace Orvanta {

namespace {

constexpr std::string_view SpecialToPrograms = " \t\n\v\"";
constexpr std::string_view SpecialToInterpreter = " \t\n\v\"&()[]{}^=;!'+,`~<>|@%";

// Backslashes count only in front of a quote, where each one has to be doubled, as at the end, where our own quote
// follows.
std::string Quoted(std::string_view argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument) {
        if (character == '"') {
            quoted.append(backslashes + 1, '\\'); // each of those before it twice, and one for the quote
        }
        backslashes = character == '\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    quoted.append(backslashes, '\\');
    return quoted += '"';
}

std::string QuoteWhere(std::string_view argument, std::string_view special) {
    const bool isPlain = !argument.empty() && argument.find_first_of(special) == std::string_view::npos;
    return isPlain ? std::string(argument) : Quoted(argument);
}

} // namespace

std::string QuoteArgument(std::string_view argument) {
    return QuoteWhere(argument, SpecialToPrograms);
}

std::string FaultForInterpreter(std::string_view line) {
    constexpr std::string_view Commands = "&|<>^()";
    bool isQuoted = false; // as the interpreter sees it, to which no backslash means anything
    for (const char character : line) {
        if (character == '\n' || character == '\r') {
            return "a line break in its arguments";
        }
        if (character == '%' || (!isQuoted && Commands.find(character) != std::string_view::npos)) {
            return std::string("\"") + character + "\" in its arguments" + (character == '%' ? "" : " behind a quote");
        }
        if (character == '"') {
            isQuoted = !isQuoted;
        }
    }
    return {};
}

std::string MakeCommandLine(const std::vector<std::string>& words, CommandLineReader reader) {
    const std::string_view special =
        reader == CommandLineReader::Interpreter ? SpecialToInterpreter : SpecialToPrograms;
    std::string line;
    for (const std::string& word : words) {
        // The first word is split by rules of its own: no backslash is special in it.
        line += line.empty() ? '"' + word + '"' : ' ' + QuoteWhere(word, special);
    }
    return line;
}

} // namespace Orvanta
