#include "analysis/SourceSelection.h"

#include "history/UnitHistory.h"
#include "platform/Files.h"

#include <algorithm>

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

// The first place at which there is something, else the first.
const std::string& LikeliestPlace(const ListedFile& file) {
    const auto place = std::find_if(file.places.begin(), file.places.end(),
                                    [](const std::string& path) { return LookAt(path).IsThere(); });
    return place == file.places.end() ? file.places.front() : *place;
}

} // namespace

std::vector<UnitAction> SelectAll(std::span<const CompileCommand> units, const RunSettings& settings) {
    return ForEachUnit(units, [&](std::size_t unit) { return RunUnlessExcluded(units[unit], settings); });
}

ListedUnits SelectListed(std::span<const CompileCommand> units, const UnitHistory& history,
                         std::span<const ListedFile> listed, const RunSettings& settings) {
    std::vector<std::string> places;
    for (const ListedFile& file : listed) {
        places.insert(places.end(), file.places.begin(), file.places.end());
    }
    std::vector<bool> isMatched;
    static_cast<void>(history.UnitsMadeOf(places, isMatched));
    ListedUnits selection;
    std::vector<std::string> chosen;
    std::size_t first = 0; // of the file's places
    for (const ListedFile& file : listed) {
        std::size_t place = 0;
        while (place < file.places.size() && !isMatched[first + place]) {
            ++place;
        }
        if (place < file.places.size()) {
            chosen.push_back(file.places[place]);
        } else {
            selection.unmatched.push_back(LikeliestPlace(file));
        }
        first += file.places.size();
    }
    const std::vector<bool> isSelected = history.UnitsMadeOf(chosen, isMatched);
    selection.actions = ForEachUnit(units, [&](std::size_t unit) {
        return isSelected[unit] ? RunUnlessExcluded(units[unit], settings) : UnitAction::LeaveOut;
    });
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
