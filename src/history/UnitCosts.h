#pragma once

#include "buildinput/CompileCommand.h"
#include "history/UnitCost.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What units took when they last ran: a file of its own, `unit_costs.bin`, in the folder ".Orvanta".
//
// Why not in the history: that is kept by incremental runs alone, decides what runs, and is a fault when it is lost.
// Costs are kept by every run that leaves a report, decide nothing but an order and a forecast, and may be wrong: so
// they need no lock, no identity but the unit's name and command line, and no word to the user when they are gone.
//
// The file is a head, rows sorted by unit, and a checksum: a hundred thousand units are some 6 MB, read with one call
// and looked up in place. A unit that did not run keeps its row. Of units that are no longer part of the build, rows go
// when there are too many, the oldest first.

namespace Orvanta {

/// What was done with the unit: each costs something else. Numbers stand in the file.
enum class CostKind : std::uint32_t {
    Analysis = 0,
    Listing = 1, ///< of the files that it is made of
    Collecting = 2,
    Performing = 3, ///< of what was collected
};

/// What tells a unit from others here: not all that decides its result.
struct CostKey {
    std::uint64_t source = 0;    ///< of its folder and its source
    std::uint64_t arguments = 0; ///< of its command line

    friend bool operator==(const CostKey&, const CostKey&) = default;
};

/// The key of a unit.
[[nodiscard]] CostKey CostKeyOf(const CompileCommand& command);

/// The same of what makes it.
[[nodiscard]] CostKey CostKeyOf(std::string_view directory, std::string_view source,
                                std::span<const std::string> arguments);

/// The costs of units, of earlier runs and of this one. One thread at a time uses an object.
class UnitCosts {
public:
    /// Knows nothing, and keeps nothing.
    UnitCosts() = default;
    /// Reads what runs have left in `folder`; a file that is missing, damaged or of another version tells nothing.
    explicit UnitCosts(const std::string& folder);

    /// Whether earlier runs have told nothing.
    [[nodiscard]] bool IsEmpty() const noexcept { return rows_.empty(); }

    /// What earlier runs measured: of the same command line, else of another with the same source.
    [[nodiscard]] std::optional<UnitCost> Find(CostKind kind, const CostKey& key) const;

    /// Notes what this run has measured, which `Save` keeps: times in tenths of milliseconds, memory in units of 1024.
    void Record(CostKind kind, const CostKey& key, const UnitCost& cost);

    /// Replaces the file in one step. `units` is how many the build has. Nothing is written when nothing was noted.
    /// \throws FileException
    void Save(std::size_t units);

private:
    struct Row {
        std::uint32_t kind = 0;
        std::uint32_t run = 0; // number of the run that measured it
        CostKey key;
        std::uint64_t textBytes = 0;
        std::uint32_t compilerWall = 0;
        std::uint32_t compilerProcessor = 0;
        std::uint32_t compilerMemory = 0;
        std::uint32_t coreWall = 0;
        std::uint32_t coreProcessor = 0;
        std::uint32_t coreMemory = 0;
    };

    // The order of the file.
    [[nodiscard]] static bool ComesBefore(const Row& left, const Row& right);
    // Puts the rows of this run in the place of older ones.
    void Merge();
    // Drops the oldest rows beyond what a build of so many units may need.
    void Limit(std::size_t units);
    void Read();

    std::string path_; // empty: nowhere
    std::uint32_t run_ = 1;
    std::vector<Row> rows_;  // sorted
    std::vector<Row> fresh_; // of this run, in the order in which they came
};

} // namespace Orvanta
