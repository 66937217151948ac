#pragma once

#include "analysis/ToldInput.h"
#include "shards/PartReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// In what the makers of one result differ from those of another one, as a user reads it; absent when in nothing that
/// must not differ. How the units are cut into shards may.
[[nodiscard]] std::optional<std::string> DifferenceOf(const PartMakers& one, const PartMakers& other);

/// The parts of one run, as one: their units in input order. Those of shards of which there is no part are not among
/// them. Memory grows with the units and not with what they found.
class PartSet : public ToldInput {
public:
    /// Opens all parts. \throws ZelmException for one that can't be read, that is of another run than the first (which
    /// says in what they differ), that is there twice, and for parts that share a unit
    explicit PartSet(std::span<const std::string> paths);

    /// What is the same for all of them, and the notices of the run.
    [[nodiscard]] const PartHead& Head() const noexcept { return parts_.front()->Head(); }

    /// How many there are.
    [[nodiscard]] std::size_t PartCount() const noexcept { return parts_.size(); }

    /// What of the run is missing, a line each: shards without a part, and units that were stopped. Empty when it is
    /// whole.
    [[nodiscard]] std::string Gaps() const;

    /// The shard that the unit is of, from 1.
    [[nodiscard]] std::uint32_t ShardOf(std::size_t unit) const {
        return parts_[order_[unit].part]->Head().shard.number;
    }

    /// The result of the next unit, as often as there are units: below the root of the first part's sources, wherever
    /// its shard had them.
    [[nodiscard]] PartResult Next();

    [[nodiscard]] std::size_t UnitCount() const noexcept override { return order_.size(); }

    [[nodiscard]] std::size_t InvocationOf(std::size_t unit) const override { return NamedUnit(unit).invocation; }

    [[nodiscard]] std::string SourceOf(std::size_t unit) const override { return NamedUnit(unit).source; }

    [[nodiscard]] std::span<const SkippedInvocation> Skipped() const noexcept override { return skipped_; }

private:
    /// Where a unit of the whole stands.
    struct Place {
        std::size_t number = 0; // in the input
        std::uint32_t part = 0;
        std::uint32_t unit = 0; // of the part
    };

    [[nodiscard]] const PartUnit& NamedUnit(std::size_t unit) const {
        return parts_[order_[unit].part]->Units()[order_[unit].unit];
    }

    // All three throw what the constructor throws.
    void RequireOneRun() const;
    void RequireEachShardOnce() const;
    void RequireOnePartition() const;
    // Which units are in two parts, and which in none, a line each.
    [[nodiscard]] std::string DescribeOverlaps() const;

    std::vector<std::unique_ptr<PartReader>> parts_; // by the number of their shard
    std::vector<Place> order_;
    std::vector<SkippedInvocation> skipped_;
    std::string sourceRoot_; // of the first part
    std::size_t next_ = 0;
};

} // namespace Orvanta
