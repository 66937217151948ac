#pragma once

#include "report/ReportMessage.h"

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Reads one message from its JSON object. Invalid UTF-8 in its texts is replaced by U+FFFD.
/// \throws ParseException for a number that the record can't hold, or the JSON library's exceptions
[[nodiscard]] ReportMessage ReadJsonMessage(std::string_view text);

/// Appends the message as a JSON object on one line. Invalid UTF-8 is replaced by U+FFFD.
void AppendJsonMessage(std::string& text, const ReportMessage& message);

} // namespace OrvlogConverter
