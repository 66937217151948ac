#pragma once

#include "history/UnitHistory.h"

#include <vector>

namespace Orvanta {

/// What a run does with a unit.
enum class UnitAction {
    Run,
    CarryOver, ///< reports what its last run found
    Exclude,   ///< the settings leave it out
    LeaveOut,  ///< it is not listed
};

/// The part of a run's progress that one pass over the units is.
struct PercentRange {
    unsigned begin = 0;
    unsigned end = 100;
};

/// What a pass over the units is to do.
struct RunPlan {
    enum class Work {
        Analyze,
        ListDependencies, ///< nothing is analyzed
    };

    Work work = Work::Analyze;
    /// Takes what the units are made of and what they found. Null: nothing is kept, and nothing can be carried over.
    UnitHistory* history = nullptr;
    std::vector<UnitAction> actions = {}; ///< by unit; empty: all run
    PercentRange percents = {};
};

} // namespace Orvanta
