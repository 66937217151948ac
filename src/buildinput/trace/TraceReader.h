#pragma once

#include "buildinput/InvocationCollector.h"

#include <istream>
#include <string>

namespace Orvanta {

/// Reads the trace of a build, the text output of strace, and hands each compiler that it started to the collector,
/// with the directory in which it ran and, where the trace shows it whole, the environment. What a compiler starts in
/// its turn is part of its own invocation. The trace is read line by line: it is never whole in memory. `path` is for
/// messages only. False when the text is no trace. \throws ZelmException "No roots found" for a trace of no process,
/// "No pwd" when it does not tell a compiler's folder; NoCompilerInvocationsFound
bool ReadTrace(std::istream& input, const std::string& path, InvocationCollector& collector);

} // namespace Orvanta
