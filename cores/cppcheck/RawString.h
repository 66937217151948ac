#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// What ends the raw string literal that `line` opens and leaves open, such as `)x"` for `R"x(`; empty when there is
/// none. `line` itself begins outside of any literal.
[[nodiscard]] std::string EndOfOpenRawString(std::string_view line);

} // namespace Orvanta
