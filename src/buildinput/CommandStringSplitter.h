#pragma once

#include <string>
#include <string_view>
#include <vector>

// A database may hold a command as one text, as a tool has written it for the shell of its system. It is split here and
// by no shell: nothing may be run or expanded while a database is read. Windows' rules are the project's own code as
// well, so that both systems split a text in the same way, and tests of one system hold for the other.

namespace Orvanta {

/// By whose rules a command string is split into arguments. Both run on both systems.
enum class CommandStringRules {
    Posix,   ///< the POSIX shell's quoting, without any expansion
    Windows, ///< those of the platform's own splitter, CommandLineToArgvW
};

/// The rules of the system that the driver runs on: a database is read where its build has run.
[[nodiscard]] CommandStringRules HostCommandStringRules() noexcept;

/// The arguments of a command string; empty when it can't be split.
[[nodiscard]] std::vector<std::string> SplitCommandString(std::string_view command, CommandStringRules rules);

/// The same into a vector that is used for many commands: what it held is replaced, the memory of its strings is kept.
void SplitCommandString(std::string_view command, CommandStringRules rules, std::vector<std::string>& arguments);

} // namespace Orvanta
