#include "analysis/UnitQueue.h"

#include "platform/Process.h"

#include <optional>

namespace Orvanta {

void UnitQueue::Add(std::size_t unit, const MemoryNeed& need) {
    {
        const std::lock_guard lock(mutex_);
        plan_.Add(unit, need);
    }
    // Not one alone: who waits to run a unit alone has no use for it.
    changed_.notify_all();
}

std::size_t UnitQueue::Take() {
    std::unique_lock lock(mutex_);
    while (true) {
        std::optional<std::size_t> unit = endAsked_() ? plan_.BeginFirst() : plan_.Begin();
        if (unit) {
            return *unit;
        }
        changed_.wait_for(lock, PollInterval);
    }
}

void UnitQueue::End(std::size_t unit, std::uint64_t peak) {
    {
        const std::lock_guard lock(mutex_);
        plan_.End(unit, peak);
    }
    changed_.notify_all();
}

bool UnitQueue::HadCompany(std::size_t unit) {
    const std::lock_guard lock(mutex_);
    return plan_.HadCompany(unit);
}

bool UnitQueue::TakeAgainAlone(std::size_t unit) {
    {
        const std::lock_guard lock(mutex_);
        plan_.End(unit, 0);
        plan_.AddAlone(unit);
    }
    changed_.notify_all();
    std::unique_lock lock(mutex_);
    while (!plan_.BeginAlone(unit)) {
        if (endAsked_()) {
            return false;
        }
        changed_.wait_for(lock, PollInterval);
    }
    return true;
}

} // namespace Orvanta
