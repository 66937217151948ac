#pragma once

#include "platform/Process.h"
#include "platform/windows/Handle.h"
#include "platform/windows/ProcessTree.h"

namespace Orvanta {

/// The handles that a child gets, and no others.
struct ChildOutputs {
    void* standardOutput;
    void* standardError;
};

/// A child that runs.
struct StartedChild {
    Handle process;
    Job job; ///< not open when the child belongs to its parent's, or where the system allows none
};

/// Starts a child, which runs when this returns. The outputs stay the caller's, who closes them.
/// \throws ProcessStartException
/// \throws SystemFault when the system has no room for what the start needs
[[nodiscard]] StartedChild StartChild(const Arguments& command, const StartConditions& conditions,
                                      const ChildOutputs& outputs);

} // namespace Orvanta
