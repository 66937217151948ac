#pragma once

#include "history/HistoryFile.h"
#include "history/UnitIdentity.h"

#include <span>
#include <vector>

namespace Orvanta {

/// The rows of a run's units, in its order, from those that earlier runs have `known`; the rows that are left follow
/// behind. A unit is found by its id; of several with the same, by its arguments, and otherwise the first that is left
/// is taken for it. A new one gets a number that no other unit of its source has.
[[nodiscard]] std::vector<KnownUnit> MatchUnits(std::span<const UnitIdentity> identities, std::vector<KnownUnit> known);

} // namespace Orvanta
