#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// One line of a script that a double plays: a word and, after one blank, the rest of the line.
struct ScriptLine {
    std::string word;
    std::string rest;
};

/// Reads a script, one step a line; empty lines and lines that begin with "#" are left out. No file is no steps.
[[nodiscard]] std::vector<ScriptLine> ReadScript(const std::string& path);

/// Cuts the text up to the first blank off `rest` and returns it.
std::string TakeWord(std::string& rest);

[[nodiscard]] std::string ReadText(const std::string& path);

/// Appends one line in one piece, so that several processes may write to one file.
void AppendLine(const std::string& path, std::string_view line);

/// Makes an empty file appear: the sign that a test or another double waits for.
void TouchFile(const std::string& path);

/// Returns when the file at `path` exists. A test gone wrong must not leave its children behind: after 20 seconds the
/// process ends with a code of its own.
void WaitForFile(const std::string& path);

/// Holds the lock of `key` in `directory` for as long as the process lives, and does nothing else for a minute or until
/// the folder is gone: whoever gets that lock knows that the process has ended.
[[noreturn]] void Hang(const std::string& directory, const std::string& key);

} // namespace Orvanta
