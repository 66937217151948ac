#pragma once

#include "analysis/Progress.h"

#include <atomic>
#include <cstddef>
#include <string_view>

namespace Orvanta {

/// Counts the finished units of one pass and shows its steps. Any thread may call it.
class PassProgress {
public:
    /// `units` is at least 1; `range` is the share of the whole run's progress that the pass has.
    PassProgress(AnalyzerProgress& progress, std::size_t units, PercentRange range)
        : progress_(progress), units_(units), range_(range) {}

    /// Counts one more unit as finished; shows nothing.
    void CountFinished() { ++finished_; }

    /// A unit, which counts when it has been counted, has gone through a stage.
    void Step(unsigned stage, std::string_view file) {
        const std::size_t percents = (range_.end - range_.begin) * finished_.load() / units_;
        progress_.Step(range_.begin + static_cast<unsigned>(percents), stage, file);
    }

private:
    AnalyzerProgress& progress_;
    std::size_t units_;
    PercentRange range_;
    std::atomic<std::size_t> finished_ = 0;
};

} // namespace Orvanta
