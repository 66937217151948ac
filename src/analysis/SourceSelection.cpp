#include "analysis/SourceSelection.h"

#include "platform/Paths.h"

#include <algorithm>
#include <unordered_map>

namespace Orvanta {

ListedUnits SelectListed(std::span<const CompileCommand> units, const UnitHistory& history,
                         std::span<const std::string> listed) {
    std::vector<bool> isMatched;
    const std::vector<bool> isMadeOfListed = history.UnitsMadeOf(listed, isMatched);
    std::unordered_map<std::string, std::vector<std::size_t>> places; // in `listed`, by the comparable form of the path
    for (std::size_t place = 0; place < listed.size(); ++place) {
        places[ComparablePath(listed[place])].push_back(place);
    }
    ListedUnits selection;
    selection.actions.reserve(units.size());
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        const auto named = places.find(ComparablePath(SourcePath(units[unit])));
        if (named != places.end()) {
            for (const std::size_t place : named->second) {
                isMatched[place] = true;
            }
        }
        const bool isSelected = named != places.end() || isMadeOfListed[unit];
        selection.actions.push_back(isSelected ? UnitAction::Run : UnitAction::LeaveOut);
    }
    for (std::size_t place = 0; place < listed.size(); ++place) {
        if (!isMatched[place]) {
            selection.unmatched.push_back(listed[place]);
        }
    }
    return selection;
}

std::vector<UnitAction> SelectModified(std::span<const CompileCommand> units, UnitHistory& history,
                                       const RunSettings& settings) {
    std::vector<UnitAction> actions;
    actions.reserve(units.size());
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        if (IsExcluded(settings, SourcePath(units[unit])) || history.IsLeftOut(unit)) {
            actions.push_back(UnitAction::Exclude);
        } else {
            actions.push_back(history.IsUnchanged(unit) ? UnitAction::CarryOver : UnitAction::Run);
        }
    }
    return actions;
}

bool RunsNone(std::span<const UnitAction> actions) {
    return std::none_of(actions.begin(), actions.end(), [](UnitAction action) { return action == UnitAction::Run; });
}

} // namespace Orvanta
