#include "platform/ShellText.h"

#include "platform/windows/CommandLine.h"

namespace Orvanta {

// Words with "%" can't be written for the interpreter in a way that holds on the prompt and in a batch file alike: they
// stand as they are.
std::string ShellLine(const std::string& folder, const Environment& variables, const std::vector<std::string>& words) {
    std::string line = "cd /d \"" + folder + "\" &&";
    for (const auto& [name, value] : variables) {
        line.append(" set \"").append(name).append("=").append(value).append("\" &&");
    }
    return line + " " + MakeCommandLine(words, CommandLineReader::Interpreter);
}

} // namespace Orvanta
