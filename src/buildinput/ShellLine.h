#pragma once

#include <span>
#include <string>
#include <vector>

// Some tools write a whole line of the shell into a database, such as "cd lib && cc -c a.c". No shell is run for it:
// what is to be known is which compiler would run where, and a line that does more than that is rare in a database.

namespace Orvanta {

/// One command of a line that a shell runs.
struct ShellCommand {
    std::vector<std::string> words;
    std::string directory; ///< into which the line has changed before, as written; empty: none
};

/// Whether the words of a command were meant for a shell: one of them joins commands ("&&", "||", ";", "|"), or the
/// first is ":" or "cd". Build tools write such lines into their databases where they would hand them to a shell.
[[nodiscard]] bool IsShellLine(std::span<const std::string> words) noexcept;

/// The commands of such a line without those that only the shell knows, and without redirections.
[[nodiscard]] std::vector<ShellCommand> SplitShellLine(std::span<const std::string> words);

} // namespace Orvanta
