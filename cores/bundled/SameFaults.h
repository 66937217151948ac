#pragma once

#include <string_view>

namespace Orvanta {

/// Whether findings of the two checks at one place are about one fault: two engines call it by different names, or two
/// checks of one. A check is not the same as itself: two of its findings differ in what they are about.
[[nodiscard]] bool FindSameFault(std::string_view left, std::string_view right);

} // namespace Orvanta
