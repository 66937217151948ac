#pragma once

#include "buildinput/InvocationCollector.h"

#include <istream>
#include <string>

// How a trace is read:
//
//     line -> TraceLine      what one line is, without its neighbours
//          -> TracedCall     a whole call, put together from its parts, taken apart by its text
//          -> ProcessTree    folded into what is known of its process: who started it, where it works
//          -> InvocationQueue  compilers' runs wait until it is known where they took place and who started them
//          -> InvocationCollector
//
// A child's first lines often stand before the call that started it has returned, so that folders and parents are
// references that are filled in later (ProcessOrigin), and a run waits for them. The way that was not taken is to read
// the trace twice: it may be a pipe, and is often larger than the memory.

namespace Orvanta {

/// Reads the trace of a build, the text output of strace, and hands each compiler that it started to the collector,
/// with the directory in which it ran and, where the trace shows it whole, the environment. What a compiler starts in
/// its turn is part of its own invocation. The trace is read line by line: it is never whole in memory. `path` is for
/// messages only. False when the text is no trace. \throws ZelmException "No roots found" for a trace of no process,
/// "No pwd" when it does not tell a compiler's folder; NoCompilerInvocationsFound
bool ReadTrace(std::istream& input, const std::string& path, InvocationCollector& collector);

} // namespace Orvanta
