#pragma once

#include <cstdint>
#include <string_view>

namespace Orvanta {

/// The mode where nothing names another, as a setting: the mask of "GA".
inline constexpr const char* DefaultAnalysisMode = "4";

/// Reads a set of diagnostic groups ("GA;OP;64", "GA+MISRA", "all", or a number from 1 to 255) into its mask.
/// \throws ZelmException
[[nodiscard]] std::uint8_t ParseAnalysisMode(std::string_view text);

} // namespace Orvanta
