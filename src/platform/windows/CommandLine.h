#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// One argument in the form in which a program's own splitting gives it back.
[[nodiscard]] std::string QuoteArgument(std::string_view argument);

/// Which program splits the command line.
enum class CommandLineReader {
    Program,     ///< the started program itself, by the usual rules
    Interpreter, ///< the command interpreter, for a batch file: what is special to it is quoted too
};

/// The command line that starts a program with these words.
[[nodiscard]] std::string MakeCommandLine(const std::vector<std::string>& words, CommandLineReader reader);

} // namespace Orvanta
