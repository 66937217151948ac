#pragma once

#include "history/DependencyInfo.h"
#include "history/FileVersions.h"
#include "history/HistoryFile.h"
#include "history/UnitHistory.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// The lists that `depend_info.json` itself holds, for the units of a run.
class NamedDependencies {
public:
    /// All of them outlive this object.
    NamedDependencies(std::span<const UnitIdentity> identities, std::span<const CompileCommand> commands,
                      FileVersions& files);

    /// Takes an entry for the unit of its "id". One without goes to every unit of its arguments, and several of those
    /// to one unit count together.
    void Take(const DependencyInfoEntry& entry);

    /// Whether the file holds something that would not be written so for these units.
    [[nodiscard]] bool IsOtherwiseWritten() const noexcept { return isOtherwiseWritten_; }

    /// Puts the lists in the place of those that `units` have in `lists`. Where a unit is known to have seen a file
    /// that is named, it is that version which counts, else one that is not known; what else it saw follows. A unit
    /// without a list loses its result.
    void MakeLists(std::span<KnownUnit> units, std::vector<std::uint32_t>& lists) const;

private:
    void TakeFor(std::size_t unit, const DependencyInfoEntry& entry);
    void FindArguments();

    std::span<const UnitIdentity> identities_;
    std::span<const CompileCommand> commands_;
    FileVersions& files_;
    std::unordered_map<std::string_view, std::size_t> unitsById_;
    std::unordered_multimap<std::uint64_t, std::size_t> unitsByArguments_; // made when the first entry has no "id"
    std::vector<std::optional<std::vector<std::uint32_t>>> named_;         // by unit: its files
    bool isOtherwiseWritten_ = false;
};

} // namespace Orvanta
