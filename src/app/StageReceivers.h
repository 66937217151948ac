#pragma once

#include "analysis/RunOutcome.h"
#include "shards/StageFolder.h"

#include <cstddef>
#include <map>
#include <utility>

namespace Orvanta {

/// What stands before the reason why a unit could not be collected.
inline constexpr const char* NotCollected = "Its intermodular information could not be collected: ";

/// Hands on how units ended that were collected, and drops what the core wrote meanwhile. Any thread may commit.
class CollectedResults : public ResultReceiver {
public:
    /// `next` outlives the receiver.
    explicit CollectedResults(ResultReceiver& next) : next_(next) {}

    /// Removes the file of the unit's findings.
    void Commit(std::size_t unit, UnitResult result) override;

    void Flush() override { next_.Flush(); }

    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return next_.Outcome(); }

private:
    ResultReceiver& next_;
};

/// Makes failed ones of the results of units that could not be collected, with all that they found. Any thread may
/// commit.
class PerformedResults : public ResultReceiver {
public:
    /// `failures` go by the units of the run. `next` outlives the receiver.
    PerformedResults(std::map<std::size_t, CollectFailure> failures, ResultReceiver& next)
        : failures_(std::move(failures)), next_(next) {}

    void Commit(std::size_t unit, UnitResult result) override;

    void Flush() override { next_.Flush(); }

    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return next_.Outcome(); }

private:
    const std::map<std::size_t, CollectFailure> failures_;
    ResultReceiver& next_;
};

} // namespace Orvanta
