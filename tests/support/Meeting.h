#pragma once

#include <condition_variable>
#include <mutex>

namespace Orvanta {

/// Where threads wait for each other, again and again: nobody leaves before all have come. The standard library has
/// such a thing, but not every one of those that we are built with wakes all who wait.
class Meeting {
public:
    explicit Meeting(unsigned members) : members_(members), missing_(members) {}

    /// Comes, and waits for the others.
    void Come() {
        std::unique_lock lock(mutex_);
        const unsigned round = round_;
        if (--missing_ == 0) {
            missing_ = members_;
            ++round_;
            allCame_.notify_all();
            return;
        }
        allCame_.wait(lock, [this, round] { return round_ != round; });
    }

private:
    std::mutex mutex_;
    std::condition_variable allCame_;
    unsigned members_;
    unsigned missing_;   // guarded by mutex_
    unsigned round_ = 0; // guarded by mutex_
};

} // namespace Orvanta
