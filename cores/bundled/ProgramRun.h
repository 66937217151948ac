#pragma once

#include "platform/Process.h"

#include <string>

namespace Orvanta {

/// What a program has written, and how it ended.
struct ProgramEnd {
    int exitCode = 0;
    std::string standardOutput;
    std::string standardError;
};

/// Runs a program to its end, within the process group of this core: whoever ends that ends the program too.
/// \throws ProcessStartException when it can't be started
[[nodiscard]] ProgramEnd RunProgram(const Arguments& command, const std::string& workingDirectory);

/// What a program answers to `--version`.
/// \throws ZelmException with `name` when it can't be started or fails
[[nodiscard]] std::string VersionAnswer(const std::string& program, std::string_view name,
                                        const std::string& workingDirectory);

/// Tells a program's file from another one, also from one of the same version that was built anew.
[[nodiscard]] std::string ProgramIdentity(const std::string& program);

} // namespace Orvanta
