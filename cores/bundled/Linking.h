#pragma once

#include "bundled/UnitSettings.h"

#include <string>

namespace Orvanta {

/// Looks for faults that lie across the listed units and writes them to the merged file. What Cppcheck wrote besides
/// findings is returned.
/// \throws ZelmException when a unit's information can't be read or is damaged, or when Cppcheck fails
[[nodiscard]] std::string LinkUnits(const LinkSettings& settings);

} // namespace Orvanta
