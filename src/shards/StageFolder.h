#pragma once

// What the stages of an intermodular analysis leave to each other when each is a run of its own, maybe on several
// machines that see one folder:
//
//     collected/2-of-3/part.orvpart       a part without findings: which units, of what run, and how each ended
//     collected/2-of-3/17.Orvanta.dfo     what the core has collected of unit 17 of the input
//     collected/2-of-3/count              how many of these there are
//     linked/intermodular-merged-info.Orvanta.dfo
//     linked/of-collected                 the fingerprint of the parts that were linked
//
// Each shard has a folder of its own, so that whatever is removed of it can be removed whole. The part says that all
// was stopped as long as a run collects, and what was linked is only good for the very parts from which it was made: a
// shard that is collected again, or half, is never taken for what was linked.

#include "analysis/AnalyzerStatus.h"
#include "platform/Fingerprint.h"
#include "shards/Part.h"
#include "shards/Shard.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Orvanta {

/// How a unit ended that could not be collected.
struct CollectFailure {
    AnalyzerStatus status = AnalyzerStatus::Failed;
    std::string reason;
};

/// What was collected by all shards; units go by their number in the whole input, from 0.
struct CollectedUnits {
    std::uint32_t shards = 1;
    std::vector<std::uint32_t> shardOf; ///< by unit: the shard that has collected it
    std::map<std::size_t, CollectFailure> failures;
    Fingerprint parts; ///< another one as soon as a shard is collected again
};

/// Names and reads what stages leave in their folder. Any thread may ask for names.
class StageFolder {
public:
    /// `path` is absolute; nothing need be there yet.
    explicit StageFolder(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] std::string FolderOf(const Shard& shard) const;
    [[nodiscard]] std::string PartOf(const Shard& shard) const;
    /// Where the core leaves what it has collected of a unit.
    [[nodiscard]] std::string UnitFile(const Shard& shard, std::size_t number) const;
    [[nodiscard]] std::string LinkedFolder() const;
    [[nodiscard]] std::string MergedFile() const;

    /// Removes what an earlier run has collected of the shard's units. \throws FileException
    void ForgetUnits(const Shard& shard) const;

    /// All that the core leaves of the shard's units is there. A machine that doesn't see it yet must not link the
    /// rest. \throws FileException
    void NoteUnits(const Shard& shard) const;

    /// Reads the parts of all shards. \throws ZelmException that says which shards are missing or have not come to
    /// their end, which parts are not of one run, in what they differ from this run of `makers`, or where files of
    /// units are gone
    [[nodiscard]] CollectedUnits ReadCollected(const PartMakers& makers) const;

    /// Nothing counts as linked from here on.
    void ForgetLinked() const;

    /// What these parts hold is linked. \throws FileException
    void NoteLinked(const CollectedUnits& collected) const;

    /// \throws ZelmException unless these parts, as they are, were the last to be linked
    void RequireLinked(const CollectedUnits& collected) const;

private:
    // Of all shards of which there is something, in no order.
    [[nodiscard]] std::vector<std::string> ListParts() const;

    std::string path_;
};

} // namespace Orvanta
