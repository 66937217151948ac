#pragma once

#include "platform/Process.h"

#include <optional>

namespace Orvanta {

/// How a child of a unit's run ended, and what it said.
struct ChildEnd {
    std::optional<int> exitCode; ///< absent: it was not run, or did not end by itself
    CapturedOutput output;
};

/// What is known of a unit's run beside its result: of each kind of child the last one.
struct UnitEvidence {
    ChildEnd compiler;
    ChildEnd core;
    Arguments coreFlags; ///< behind the settings file
};

} // namespace Orvanta
