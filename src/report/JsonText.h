#pragma once

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Appends the text as a JSON string with its quotes, on one line. Invalid UTF-8 is replaced by U+FFFD.
void AppendJsonString(std::string& json, std::string_view text);

} // namespace OrvlogConverter
