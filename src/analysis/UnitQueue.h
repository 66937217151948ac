#pragma once

#include "analysis/MemoryPlan.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>

namespace Orvanta {

/// The units of a pass that wait for a worker, and for the memory to run in. Workers take from it; one thread adds.
/// A wait looks every PollInterval whether the pass is to end, and then gives out what is left without a further look.
class UnitQueue {
public:
    /// Whether no further unit is to begin. Any thread may call it.
    using EndAsked = std::function<bool()>;

    /// 0: memory is no matter.
    UnitQueue(std::uint64_t budget, EndAsked endAsked) : plan_(budget), endAsked_(std::move(endAsked)) {}

    void Add(std::size_t unit, const MemoryNeed& need);

    /// Waits for a unit that may run, and takes it. To be called once for each that was added.
    [[nodiscard]] std::size_t Take();

    /// The worker has done with the unit.
    void End(std::size_t unit, std::uint64_t peak);

    /// Whether a unit that is being run has others beside it, or had.
    [[nodiscard]] bool HadCompany(std::size_t unit);

    /// Ends the unit, waits until nothing else runs, and takes it again. False when the pass is to end: then it has
    /// ended for good.
    [[nodiscard]] bool TakeAgainAlone(std::size_t unit);

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    MemoryPlan plan_; // guarded by mutex_
    EndAsked endAsked_;
};

} // namespace Orvanta
