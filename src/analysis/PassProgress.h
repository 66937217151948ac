#pragma once

#include "analysis/Progress.h"

#include <atomic>
#include <cstddef>
#include <string_view>

namespace Orvanta {

/// Counts the finished units of one pass and shows its steps. Any thread may call it.
class PassProgress {
public:
    PassProgress(AnalyzerProgress& progress, std::size_t units) : progress_(progress), units_(units) {}

    void CountFinished() { ++finished_; }

    /// A unit, which counts when it has been counted, has gone through a stage.
    void Step(unsigned stage, std::string_view file) {
        progress_.Step(static_cast<unsigned>(100 * finished_.load() / units_), stage, file);
    }

private:
    AnalyzerProgress& progress_;
    std::size_t units_;
    std::atomic<std::size_t> finished_ = 0;
};

} // namespace Orvanta
