#pragma once

#include "buildinput/BuildInput.h"
#include "buildinput/CompileCommand.h"
#include "cache/RootMark.h"
#include "history/UnitCosts.h"
#include "platform/Fingerprint.h"
#include "shards/Shard.h"
#include "shards/UnitPrices.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// Which shard analyzes which unit.
//
// Shards know nothing of each other, so each must find the same answer: from the units, the number of shards and, where
// it is handed to all of them, a file of what units took. What a machine has learned by itself (what its own runs took,
// how many processors it has, where its checkout lies) never counts. Merging compares the fingerprints of the answers
// all the same.

namespace Orvanta {

/// The shard of each unit, from 1.
using UnitPartition = std::vector<std::uint32_t>;

/// By the key of each unit, which is of its folder, source and arguments: it stays in its shard whatever becomes of the
/// others.
[[nodiscard]] UnitPartition PartitionByHash(std::span<const CostKey> units, std::uint32_t count);

/// So that all shards take about as long: the longest unit first, each into the shard that has the least so far. One
/// that `prices` doesn't know counts as the median of those that it knows.
[[nodiscard]] UnitPartition PartitionByPrice(std::span<const CompileCommand> units, std::uint32_t count,
                                             const UnitPrices& prices);

/// What a shard is of the whole run.
struct ShardSelection {
    Shard shard;
    std::vector<std::size_t> units; ///< its own, by their numbers in the input, from 0: what is left of them there
    std::size_t allUnits = 0;       ///< of the input
    Fingerprint build;              ///< of all units and invocations of the input
    Fingerprint compilers;          ///< of their families and versions
    Fingerprint partition;          ///< of what is in which shard
};

/// Leaves only the units of the shard among the commands, in their order. What gave no unit stays: each shard tells it.
/// Where the root of the source tree lies counts nowhere.
[[nodiscard]] ShardSelection KeepShard(CollectedCommands& commands, const Shard& shard,
                                       const std::optional<UnitPrices>& prices, const RootMark& root);

} // namespace Orvanta
