#pragma once

#include "analysis/ToldInput.h"
#include "history/UnitCost.h"

#include <span>
#include <string>

namespace Orvanta {

/// The lines that say which units took longest, and how the time is shared between the compiler and the core; `costs`
/// are those of the units, or none. Empty when nothing was run.
[[nodiscard]] std::string TimesText(const ToldInput& input, std::span<const UnitCost> costs);

} // namespace Orvanta
