#pragma once

namespace Orvanta {

/// The whole program: parses the command line, runs the chosen subcommand and returns the exit code. Prints every
/// top-level message itself; no exception leaves it.
int RunProgram(int argumentCount, const char* const* arguments);

} // namespace Orvanta
