#pragma once

#include "compilers/CommandLineReader.h"
#include "compilers/Compiler.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

using Words = std::vector<std::string>;

/// The words of a command in which none holds a blank.
inline Words Split(std::string_view command) {
    std::istringstream stream{std::string(command)};
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

/// Words joined by blanks, as a test's row writes them.
inline std::string Join(const Words& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

/// Reads the command for the first source that it compiles.
template <typename Model>
ParsedCommand ReadAs(std::string_view command) {
    const Model model;
    const Words words = Split(command);
    const InvocationOutline outline = OutlineInvocation(model, words);
    if (outline.sources.empty()) {
        ADD_FAILURE() << "no source in: " << command << " (" << outline.reason << ")";
        return {};
    }
    return ReadCommandLine(model, words, outline.sources.front());
}

/// Rows of tests have a `name` that is a part of the test's name.
template <typename Case>
std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

} // namespace Orvanta
