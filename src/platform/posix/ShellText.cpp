#include "platform/ShellText.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

// What needs no quotes in any shell of the family.
bool IsPlain(char character) {
    constexpr std::string_view Signs = "%+,-./:=@_";
    const char lower = ToLowerAscii(character);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z') || Signs.find(character) != std::string_view::npos;
}

// A first word with "=" would be an assignment.
std::string Quoted(const std::string& word, bool isFirst) {
    const bool isPlain = !word.empty() && std::all_of(word.begin(), word.end(), IsPlain);
    if (isPlain && (!isFirst || word.find('=') == std::string::npos)) {
        return word;
    }
    std::string quoted = "'";
    for (const char character : word) {
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return quoted + "'";
}

} // namespace

std::string ShellLine(const std::string& folder, const Environment& variables, const std::vector<std::string>& words) {
    std::string line = "cd " + Quoted(folder, false) + " &&";
    for (const auto& [name, value] : variables) {
        line.append(" ").append(name).append("=").append(Quoted(value, false));
    }
    for (std::size_t place = 0; place < words.size(); ++place) {
        line += " " + Quoted(words[place], place == 0);
    }
    return line;
}

} // namespace Orvanta
