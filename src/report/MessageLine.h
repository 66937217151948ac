#pragma once

#include "report/ReportMessage.h"

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// How a message is written as one line.
enum class LineFormat {
    Json, ///< the new form: the JSON object
    Raw,  ///< the old form: fields joined by "<#~>"
};

/// Reads one line of either form: JSON when it begins with "{" and ends with "}", else raw. No line end in `line`.
/// \throws ParseException, or the JSON library's exceptions, with what was wrong
[[nodiscard]] ReportMessage ReadMessageLine(std::string_view line);

/// Appends the message as one line, without a line end. Invalid UTF-8 never makes invalid JSON.
void AppendMessageLine(std::string& text, const ReportMessage& message, LineFormat format);

} // namespace OrvlogConverter
