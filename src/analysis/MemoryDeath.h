#pragma once

#include "platform/Process.h"

namespace Orvanta {

/// Whether a child that has failed looks as if it, or what it has started, was killed for want of memory or was refused
/// more. What kills it for another reason may look the same: to take it for this costs a second run.
[[nodiscard]] bool LooksOutOfMemory(const ProcessReturnCodeException& error);

} // namespace Orvanta
