#include "analysis/SourceSelection.h"

#include "history/UnitHistory.h"
#include "platform/Paths.h"

#include <algorithm>
#include <unordered_map>

namespace Orvanta {

namespace {

UnitAction RunUnlessExcluded(const CompileCommand& unit, const RunSettings& settings) {
    return IsExcluded(settings, SourcePath(unit)) ? UnitAction::Exclude : UnitAction::Run;
}

// The action of each unit.
template <typename ActionOf>
std::vector<UnitAction> ForEachUnit(std::span<const CompileCommand> units, const ActionOf& actionOf) {
    std::vector<UnitAction> actions;
    actions.reserve(units.size());
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        actions.push_back(actionOf(unit));
    }
    return actions;
}

} // namespace

std::vector<UnitAction> SelectAll(std::span<const CompileCommand> units, const RunSettings& settings) {
    return ForEachUnit(units, [&](std::size_t unit) { return RunUnlessExcluded(units[unit], settings); });
}

ListedUnits SelectListed(std::span<const CompileCommand> units, const UnitHistory& history,
                         std::span<const std::string> listed, const RunSettings& settings) {
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
        selection.actions.push_back(isSelected ? RunUnlessExcluded(units[unit], settings) : UnitAction::LeaveOut);
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
    return ForEachUnit(units, [&](std::size_t unit) {
        const UnitAction action = RunUnlessExcluded(units[unit], settings);
        if (action == UnitAction::Exclude) {
            return action;
        }
        if (history.IsLeftOut(unit)) {
            return UnitAction::ExcludeSystem;
        }
        return history.IsUnchanged(unit) ? UnitAction::CarryOver : UnitAction::Run;
    });
}

std::vector<UnitAction> SelectUnlisted(std::span<const CompileCommand> units, UnitHistory& history,
                                       const RunSettings& settings) {
    return ForEachUnit(units, [&](std::size_t unit) {
        const UnitAction action = RunUnlessExcluded(units[unit], settings);
        const bool isKnown = history.IsLeftOut(unit) || history.KnowsDependencies(unit);
        return action == UnitAction::Run && isKnown ? UnitAction::LeaveOut : action;
    });
}

} // namespace Orvanta
