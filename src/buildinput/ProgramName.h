#pragma once

#include <string_view>

namespace Orvanta {

/// Whether a program's path ends in this file name. Neither the case of letters nor a final ".exe" matters.
[[nodiscard]] bool IsProgramNamed(std::string_view path, std::string_view name) noexcept;

} // namespace Orvanta
