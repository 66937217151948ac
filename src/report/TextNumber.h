#pragma once

#include <cstdint>
#include <string_view>

namespace OrvlogConverter {

/// Reads a decimal number of a report line, white space around it allowed. The lines' numbers are those of a signed
/// 32-bit integer that are not negative.
/// \throws ParseException "invalid stoi argument" when it is no number, "stoi argument out of range" when it is too
/// great or negative
[[nodiscard]] std::uint32_t ParseNumber(std::string_view text);

} // namespace OrvlogConverter
