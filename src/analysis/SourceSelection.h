#pragma once

#include "analysis/RunPlan.h"
#include "buildinput/CompileCommand.h"
#include "settings/RunSettings.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// Which units a list of files selects.
struct ListedUnits {
    std::vector<UnitAction> actions;    ///< by unit: Run or LeaveOut
    std::vector<std::string> unmatched; ///< the listed files that are part of no unit
};

/// Selects the units whose own source is one of the `listed` files, which are absolute and normalised, and those made
/// of one of them as far as the history knows.
[[nodiscard]] ListedUnits SelectListed(std::span<const CompileCommand> units, const UnitHistory& history,
                                       std::span<const std::string> listed);

/// Selects the units whose last result does not stand any more: the others are carried over, or excluded by the
/// settings.
[[nodiscard]] std::vector<UnitAction> SelectModified(std::span<const CompileCommand> units, UnitHistory& history,
                                                     const RunSettings& settings);

/// Whether a run with these actions would analyze nothing.
[[nodiscard]] bool RunsNone(std::span<const UnitAction> actions);

} // namespace Orvanta
