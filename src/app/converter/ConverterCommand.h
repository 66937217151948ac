#pragma once

namespace OrvlogConverter {

/// The whole program `orvlog-converter`: parses the command line, renders the reports and returns the exit code. Prints
/// every top-level message itself; no exception leaves it.
int RunConverter(int argumentCount, const char* const* arguments);

} // namespace OrvlogConverter
