#pragma once

#include "buildinput/trace/TraceLine.h"
#include "platform/Log.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>

// A trace that was made without some option is wrong in the same way in every other line. A few examples tell a user as
// much as thousands, and leave room for what else there is to say.

namespace Orvanta {

/// Says what is wrong with a trace, but of each kind only the first few times; the others are counted.
class TraceWarnings {
public:
    /// `path` is the trace's. `log` must outlive the warnings.
    TraceWarnings(std::string path, Log& log) : path_(std::move(path)), log_(log) {}

    /// A process is referred to, but the trace does not show its start.
    void NeverStarted(ProcessId process, std::size_t line);

    /// A line that should have been read can't be; `what` is put behind the trace's path and the line's number.
    void Malformed(std::size_t line, const std::string& what);

    /// Names the programs that look like compilers and are not known, with the number of their calls.
    void PassedOver(const std::map<std::string, std::size_t>& programs);

    /// Tells how many there were beyond those that were told.
    void Finish();

private:
    /// Says how many of `count` were not told, if any. `text` follows the number.
    void TellRest(std::size_t count, const std::string& text);

    std::string path_;
    Log& log_;
    std::size_t neverStarted_ = 0;
    std::size_t malformed_ = 0;
};

} // namespace Orvanta
