#pragma once

#include <string_view>

namespace Orvanta {

/// Whether the two names are those of one environment variable on this system.
[[nodiscard]] bool IsSameVariable(std::string_view left, std::string_view right) noexcept;

} // namespace Orvanta
