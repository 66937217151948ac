#pragma once

#include "buildinput/CompileCommand.h"
#include "history/DependencyInfo.h"
#include "history/FileVersions.h"
#include "history/HistoryRecord.h"
#include "history/Numbers.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

class SeenVersions;

/// Which units the entries of `depend_info.json` are of. An entry is that of the unit with its "id"; one without, as a
/// person may write it, is that of every unit of the run with its arguments.
class InfoMatcher {
public:
    /// The record outlives this object.
    explicit InfoMatcher(const HistoryRecord& record);

    /// Places in the record; empty when the entry is of no unit that is known.
    [[nodiscard]] std::span<const std::size_t> UnitsOf(const DependencyInfoEntry& entry);

    /// To be called when the record has got a unit.
    void AddUnit(std::size_t unit);

private:
    const HistoryRecord& record_;
    std::unordered_multimap<std::uint64_t, std::size_t> unitsById_;
    std::unordered_multimap<std::uint64_t, std::size_t> unitsByArguments_; // made when the first entry has no "id"
    std::vector<std::size_t> found_;
};

/// The lists that `depend_info.json` itself holds, read because a person or another program has written it. What of
/// them a unit's row does not know was added by that hand, and stays through the listings to come.
class NamedDependencies {
public:
    /// All of them outlive this object.
    NamedDependencies(HistoryRecord& record, std::span<const CompileCommand> commands, FileVersions& files);

    /// Takes an entry. A second one with the same "id" replaces the first; without, they count together. A unit that is
    /// not of this run, nor known, becomes known by it.
    void Take(const DependencyInfoEntry& entry);

    /// Puts the lists in the place of those that the record has. Where a unit is known to have seen a file that is
    /// named, it is that version which counts, else one that is not known; what else it saw follows. A unit without a
    /// list loses its result.
    void PutIntoRecord();

private:
    struct Named {
        std::vector<FileNumber> files; // the dependencies
        std::vector<FileNumber> added; // those of them that the entry itself says were added
        FileNumber source;
    };

    /// Adds the entry's files to those of the unit; relative ones are of `directory`.
    void TakeFor(std::size_t unit, const DependencyInfoEntry& entry, const std::string& directory,
                 std::string_view source);
    /// Takes an entry with an id that is of no unit of the run; absent `known` makes a unit of it.
    void TakeOther(const DependencyInfoEntry& entry, std::optional<std::size_t> known);
    /// The list made of what the file names and, from `seen`, what the unit saw of it.
    [[nodiscard]] SeenList ListOf(std::size_t unit, const Named& named, SeenVersions& seen);

    HistoryRecord& record_;
    std::span<const CompileCommand> commands_;
    FileVersions& files_;
    InfoMatcher matcher_;
    std::vector<std::optional<Named>> named_; // by unit
};

} // namespace Orvanta
