#include "buildinput/CompilerVariables.h"

#include "buildinput/CommandStringSplitter.h"
#include "platform/EnvironmentNames.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

/// The value of the first layer that has the variable, even an empty one; empty when none has.
std::string_view ValueOf(std::string_view name, std::span<const Environment* const> layers) {
    for (const Environment* const layer : layers) {
        const auto variable = std::find_if(layer->begin(), layer->end(),
                                           [name](const auto& entry) { return IsSameVariable(entry.first, name); });
        if (variable != layer->end()) {
            return variable->second;
        }
    }
    return {};
}

// A variable can't be set to text with a "=" by every shell: in a definition, "#" may stand for it.
void RestoreEqualsSign(std::string& word) {
    const std::size_t sign = word.find_first_of("#=");
    if ((word.starts_with("/D") || word.starts_with("-D")) && sign != std::string::npos) {
        word[sign] = '=';
    }
}

// By the rules of Windows on every system, as the compilers do.
std::vector<std::string> WordsOf(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    // The splitter takes the first word for a program and reads it by other rules.
    std::vector<std::string> words = SplitCommandString("cl " + std::string(value), CommandStringRules::Windows);
    words.erase(words.begin());
    std::for_each(words.begin(), words.end(), RestoreEqualsSign);
    return words;
}

// Beginnings of the names: GCC's lists of dependencies, and clang's logs.
constexpr std::string_view WritingVariables[] = {
    "DEPENDENCIES_OUTPUT", "SUNPRO_DEPENDENCIES", "CC_PRINT_HEADERS",       "CC_LOG_DIAGNOSTICS",
    "CC_PRINT_OPTIONS",    "CC_PRINT_PROC_STAT",  "CC_PRINT_INTERNAL_STAT",
};

} // namespace

void RemoveWritingVariables(Environment& variables) {
    std::erase_if(variables, [](const auto& variable) {
        // By their beginnings: beside a switch there is a variable of the same name with "_FILE" behind it.
        return std::any_of(std::begin(WritingVariables), std::end(WritingVariables),
                           [&](std::string_view beginning) { return variable.first.starts_with(beginning); });
    });
}

void AddArgumentsOfVariables(std::vector<std::string>& arguments, std::span<const Environment* const> layers) {
    std::vector<std::string> front = WordsOf(ValueOf(FrontArgumentsVariable, layers));
    // Behind the compiler and before the command's own words, which go over them: the last of two flags counts.
    arguments.insert(arguments.begin() + 1, std::make_move_iterator(front.begin()),
                     std::make_move_iterator(front.end()));
    std::vector<std::string> back = WordsOf(ValueOf(BackArgumentsVariable, layers));
    std::move(back.begin(), back.end(), std::back_inserter(arguments));
}

} // namespace Orvanta
