#pragma once

#include <string>

namespace Orvanta {

/// Looks a program up along PATH of the driver's own environment; empty when no folder of it holds the program.
[[nodiscard]] std::string FindExecutable(const std::string& program);

/// The same along the given value of PATH.
[[nodiscard]] std::string FindExecutableIn(const std::string& program, const std::string& searchPath);

/// The file that a start of `path` runs: with an extension of PATHEXT where the system adds one, otherwise `path`
/// itself, whether it exists or not.
[[nodiscard]] std::string ProgramFileOf(const std::string& path);

/// Whether `path` names a file that the system would start.
[[nodiscard]] bool IsExecutableFile(const std::string& path);

/// The absolute path of the running program's folder.
[[nodiscard]] std::string ProgramDirectory();

} // namespace Orvanta
