#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

// What Console asks of the system.

enum class StandardStream { Output, Error };

/// What the first request to end says.
inline constexpr std::string_view StopMessage = "Stopping analysis. This might take a while...\n";

/// Clears the line in which the cursor stands, and puts it at its beginning.
inline constexpr std::string_view ClearLine = "\r\x1b[K";

/// Whether a status line is shown now: what is written past WriteMessage has to clear it first.
[[nodiscard]] bool IsStatusShown() noexcept;

/// Writes all of `bytes`; one thread at a time. Empty when that went well, else the system's reason.
std::string WriteToStream(StandardStream stream, std::string_view bytes) noexcept;

/// How many columns the terminal has to which the stream goes; absent when it goes to none that knows the sequences by
/// which a line is cleared.
std::optional<unsigned> TerminalColumns(StandardStream stream) noexcept;

} // namespace Orvanta
