#pragma once

#include <string_view>

namespace Orvanta {

/// Whether a build input's environment variable is taken over: its name is made of ASCII letters, digits and
/// underscores. A shell can set no other.
[[nodiscard]] bool IsVariableName(std::string_view name) noexcept;

} // namespace Orvanta
