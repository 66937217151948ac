#pragma once

#include <optional>

namespace Orvanta {

/// What the environment says of colours, whatever the output is: NO_COLOR forbids them, CLICOLOR_FORCE asks for them.
/// Absent when it says nothing.
[[nodiscard]] std::optional<bool> ColoursAskedFor();

} // namespace Orvanta
