#pragma once

#include "report/ReportMessage.h"

#include <optional>
#include <string_view>

namespace OrvlogConverter {

/// Reads a line in the style of compiler messages, "FILE:LINE:COLUMN: KIND: TEXT" with the kind "note", "warn",
/// "warning" or "error", into a message with the code "External". Nothing when the line has another shape. Takes time
/// linear in the line's length. No line end in `line`.
/// \throws ParseException when the line number is too great
[[nodiscard]] std::optional<ReportMessage> ReadCompilerLine(std::string_view line);

} // namespace OrvlogConverter
