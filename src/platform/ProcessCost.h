#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Orvanta {

/// What a child took, with all that it started and waited for. What the system doesn't tell is 0.
struct ProcessCost {
    std::chrono::microseconds wall{0};      ///< from its start to the look that saw its end
    std::chrono::microseconds processor{0}; ///< on all processors together, for itself and for the system
    /// The most memory held at once, in bytes: where children have jobs, of all together; else of the largest of them,
    /// and then never less than what this process itself held when it started the child.
    std::uint64_t peakMemory = 0;

    /// Adds what another child took after this one.
    ProcessCost& operator+=(const ProcessCost& later) {
        wall += later.wall;
        processor += later.processor;
        peakMemory = std::max(peakMemory, later.peakMemory);
        return *this;
    }

    friend bool operator==(const ProcessCost&, const ProcessCost&) = default;
};

} // namespace Orvanta
