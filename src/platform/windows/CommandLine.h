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

/// What in a command line for the interpreter would not reach a batch file as it is, or would be a command of its own,
/// as the end of a reason; empty when nothing would. A quote inside a word ends what the interpreter takes for quoted,
/// and a variable is put in anywhere, so there is no way to write these.
[[nodiscard]] std::string FaultForInterpreter(std::string_view line);

} // namespace Orvanta
