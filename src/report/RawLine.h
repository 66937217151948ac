#pragma once

#include "report/ReportMessage.h"

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Reads a raw line: 13 or 14 fields joined by "<#~>". No line end in `line`.
/// \throws ParseException "error parsing old format message", "invalid stoi argument" or "stoi argument out of range"
[[nodiscard]] ReportMessage ReadRawLine(std::string_view line);

/// Appends the message as a raw line of 14 fields, without a line end. The form knows no escapes: a line break inside a
/// text becomes a blank, and a separator inside a text gets a blank in its middle. Positions behind the first one keep
/// their line, and only when all positions lie in one file.
void AppendRawLine(std::string& text, const ReportMessage& message);

} // namespace OrvlogConverter
