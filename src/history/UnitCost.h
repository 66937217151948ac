#pragma once

#include "platform/ProcessCost.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Orvanta {

/// What the run of one unit took. A child that was run twice counts twice; one that was never run took nothing.
struct UnitCost {
    ProcessCost compiler = {}; ///< preprocessing
    ProcessCost core = {};
    std::uint64_t textBytes = 0; ///< size of the preprocessed text; 0: there is none

    /// How long the unit's children ran, one after the other.
    [[nodiscard]] std::chrono::microseconds Wall() const noexcept { return compiler.wall + core.wall; }

    /// The most memory that the unit held at once, in bytes.
    [[nodiscard]] std::uint64_t PeakMemory() const noexcept { return std::max(compiler.peakMemory, core.peakMemory); }

    /// Adds what a later run of the unit took.
    UnitCost& operator+=(const UnitCost& later) {
        compiler += later.compiler;
        core += later.core;
        textBytes = std::max(textBytes, later.textBytes);
        return *this;
    }

    friend bool operator==(const UnitCost&, const UnitCost&) = default;
};

} // namespace Orvanta
