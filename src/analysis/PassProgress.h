#pragma once

#include "analysis/Progress.h"

#include <atomic>
#include <cstddef>
#include <string_view>

namespace Orvanta {

/// Counts the finished units of one pass and shows its steps. Any thread may call it.
class PassProgress {
public:
    PassProgress(AnalyzerProgress& progress, std::size_t units, PercentRange range)
        : progress_(progress), units_(units), range_(range) {}

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
