#pragma once

#include "platform/StopFlag.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Makes Ctrl+C (and a polite request to end) set the stop flag instead of ending the process; the first one also says
/// so on standard output. Also makes a reader of our output that goes away no reason to die, and closed standard
/// streams empty ones. Once per process, at start.
void InstallInterruptHandler(StopFlag& stop);

/// Writes the bytes to standard output in one piece, past no buffer of ours: whole lines of several writers don't mix.
/// An output that can't take them is no error.
void WriteToStandardOutput(std::string_view bytes) noexcept;

/// The same for one line, whose end is added.
inline void PrintLine(std::string_view line) {
    WriteToStandardOutput(std::string(line) += '\n');
}

/// The processors that this process may use, at least 1.
[[nodiscard]] unsigned AvailableProcessors() noexcept;

} // namespace Orvanta
