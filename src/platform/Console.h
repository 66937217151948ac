#pragma once

#include "platform/StopFlag.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// Where what the program tells its user goes.
enum class MessagePlace {
    StandardOutput,
    AmongFindings, ///< standard output too: a line that begins with "{" gets a blank in front, as those are findings
    StandardError, ///< standard output belongs to findings alone
};

/// Says where messages go from now on; to standard output until then. Before other threads are started.
void PlaceMessages(MessagePlace place) noexcept;

/// Where messages go.
[[nodiscard]] MessagePlace PlaceOfMessages() noexcept;

/// Makes Ctrl+C (and other requests to end: of a closing terminal too, unless they are to be ignored) set the stop flag
/// instead of ending the process; the first one also says so where messages go. Also makes a reader of our output that
/// goes away no reason to die, and closed standard streams empty ones. Once per process, at start.
void InstallInterruptHandler(StopFlag& stop);

/// Tells the user something, on standard output unless messages go elsewhere: in one piece, past no buffer of ours, so
/// that whole lines of several writers don't mix. An output that can't take it is no error.
void WriteMessage(std::string_view bytes) noexcept;

/// The same for one line, whose end is added.
inline void PrintLine(std::string_view line) {
    WriteMessage(std::string(line) += '\n');
}

/// Writes bytes that somebody waits for, such as a report, to standard output, in one piece too. An output that can't
/// take them is an error, and lost from then on.
/// \throws FileException
void WriteResultToStandardOutput(std::string_view bytes);

/// Whether standard output has refused a result: then the run has failed, whatever else becomes of it.
[[nodiscard]] bool IsStandardOutputLost() noexcept;

/// What WriteMessage does, on standard error.
void WriteToStandardError(std::string_view bytes) noexcept;

/// Waits for bytes on standard input and puts them, as they are, at the front of `target`. Returns how many: 0 at the
/// end of the input, and when the process is asked to stop meanwhile.
/// \throws FileException
[[nodiscard]] std::size_t ReadFromStandardInput(std::span<char> target);

/// Shows a line below all that is written, in the place of the one before; an empty one takes it away. Only where
/// MessageColumns says that it fits, and without characters that move the cursor. Any thread may call it.
void ShowStatus(std::string_view line) noexcept;

/// How many columns the terminal has to which messages go; absent when they go to none on which a line can be written
/// over. Asks the system: a terminal may have another width at any time.
[[nodiscard]] std::optional<unsigned> MessageColumns() noexcept;

/// Whether what is written to standard output may be coloured: it goes to a terminal that knows colours. NO_COLOR
/// forbids them, CLICOLOR_FORCE asks for them wherever the output goes.
[[nodiscard]] bool ShowsColours();

/// The processors that this process may use, at least 1.
[[nodiscard]] unsigned AvailableProcessors() noexcept;

} // namespace Orvanta
