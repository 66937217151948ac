#pragma once

#include "platform/StopFlag.h"

#include <cstddef>
#include <span>
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

/// The same for bytes that somebody waits for, such as a report: an output that can't take them is an error.
/// \throws FileException
void WriteResultToStandardOutput(std::string_view bytes);

/// What WriteToStandardOutput does, on standard error.
void WriteToStandardError(std::string_view bytes) noexcept;

/// Waits for bytes on standard input and puts them, as they are, at the front of `target`. Returns how many: 0 at the
/// end of the input, and when the process is asked to stop meanwhile.
/// \throws FileException
[[nodiscard]] std::size_t ReadFromStandardInput(std::span<char> target);

/// Whether what is written to standard output may be coloured: it goes to a terminal that knows colours. NO_COLOR
/// forbids them, CLICOLOR_FORCE asks for them wherever the output goes.
[[nodiscard]] bool ShowsColours();

/// The processors that this process may use, at least 1.
[[nodiscard]] unsigned AvailableProcessors() noexcept;

} // namespace Orvanta
