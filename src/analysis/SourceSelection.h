#pragma once

#include "analysis/RunPass.h"
#include "buildinput/CompileCommand.h"
#include "buildinput/SourceList.h"
#include "settings/RunSettings.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// Which units a list of files selects.
struct ListedUnits {
    std::vector<UnitAction> actions;    ///< by unit: Run, Exclude or LeaveOut
    std::vector<std::string> unmatched; ///< where the listed files that are part of no unit lie, or would lie
};

/// Selects all units that the settings don't exclude.
[[nodiscard]] std::vector<UnitAction> SelectAll(std::span<const CompileCommand> units, const RunSettings& settings);

/// Selects the units whose own source is one of the `listed` files, and those made of one of them as far as the history
/// knows; of these, those that the settings don't exclude. Of the places where a file may lie, the first counts at
/// which it is part of some unit.
[[nodiscard]] ListedUnits SelectListed(std::span<const CompileCommand> units, const UnitHistory& history,
                                       std::span<const ListedFile> listed, const RunSettings& settings);

/// Selects the units whose last result does not stand any more: the others are carried over, or excluded.
[[nodiscard]] std::vector<UnitAction> SelectModified(std::span<const CompileCommand> units, UnitHistory& history,
                                                     const RunSettings& settings);

/// Selects the units whose dependencies are not known or out of date; not those that are excluded.
[[nodiscard]] std::vector<UnitAction> SelectUnlisted(std::span<const CompileCommand> units, UnitHistory& history,
                                                     const RunSettings& settings);

} // namespace Orvanta
