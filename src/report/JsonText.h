#pragma once

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// How deep a value of ours may be nested. Nobody writes one that comes near it; what is deeper would have the JSON
/// library write it with a stack of its own for every level.
inline constexpr int DeepestJson = 1000;

/// Appends the text as a JSON string with its quotes, on one line. Invalid UTF-8 is replaced by U+FFFD.
void AppendJsonString(std::string& json, std::string_view text);

} // namespace OrvlogConverter
