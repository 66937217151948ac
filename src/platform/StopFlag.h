#pragma once

#include <atomic>

namespace Orvanta {

/// Says that the user wants the run to stop. Set once and never cleared; any thread, and a signal handler, may use it.
class StopFlag {
public:
    /// True when it was set before.
    bool Set() noexcept { return isSet_.exchange(true); }

    /// Cheap enough to be asked for every message.
    [[nodiscard]] bool IsSet() const noexcept { return isSet_.load(); }

private:
    std::atomic<bool> isSet_ = false;
    static_assert(std::atomic<bool>::is_always_lock_free, "the interrupt handler may not take a lock");
};

/// The flag of this process: the only global mutable state of the program. The interrupt handler sets it.
StopFlag& ProcessStopFlag() noexcept;

} // namespace Orvanta
