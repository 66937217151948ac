#include "platform/windows/PlatformSplitter.h"

#include "buildinput/CommandStringSplitter.h"
#include "platform/windows/CommandLine.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {
namespace {

// What a command string is made of: everything that splitting looks at, often, and what it must leave alone.
constexpr std::string_view Pieces[] = {
    "\"",
    "\"",
    "\"\"",
    "\"\"\"",
    "\\",
    "\\\\",
    "\\\"",
    "\\\\\"",
    " ",
    " ",
    "  ",
    "\t",
    "\n",
    "\r",
    "\v",
    "a",
    "bc",
    "-c",
    "'",
    "\xC3\xA4",
    "\xE6\xBA\x90",
    "\xF0\x9F\x98\x80",
};

std::string RandomCommand(std::mt19937& random) {
    std::uniform_int_distribution<std::size_t> length(1, 24);
    std::uniform_int_distribution<std::size_t> piece(0, std::size(Pieces) - 1);
    std::string command;
    for (std::size_t left = length(random); left > 0; --left) {
        command += Pieces[piece(random)];
    }
    return command;
}

TEST(WindowsSplitter, AgreesWithThatOfThePlatform) {
    constexpr int Commands = 50'000;
    std::mt19937 random(20'240'101); // NOLINT(cert-msc51-cpp): the same strings in every run
    for (int i = 0; i < Commands; ++i) {
        const std::string command = RandomCommand(random);
        ASSERT_EQ(SplitCommandString(command, CommandStringRules::Windows), SplitByPlatform(command))
            << "splitting <" << command << ">";
    }
}

// What is started with quoted words must be split into them again by both.
TEST(QuotedArguments, AreSplitIntoWhatTheyWere) {
    constexpr int Commands = 10'000;
    std::mt19937 random(20'240'102); // NOLINT(cert-msc51-cpp): the same strings in every run
    std::uniform_int_distribution<std::size_t> count(0, 4);
    for (int i = 0; i < Commands; ++i) {
        std::vector<std::string> words = {"C:\\Program Files\\cc.exe"};
        for (std::size_t left = count(random); left > 0; --left) {
            words.push_back(RandomCommand(random));
        }
        words.emplace_back();
        const std::string line = MakeCommandLine(words, CommandLineReader::Program);
        ASSERT_EQ(SplitByPlatform(line), words);
        ASSERT_EQ(SplitCommandString(line, CommandStringRules::Windows), words);
    }
}

} // namespace
} // namespace Orvanta
