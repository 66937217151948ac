#pragma once

#include "platform/StopFlag.h"

#include <string>

namespace Orvanta {

/// Asks a core for its version: the first line that it prints for "--version". Empty when it doesn't know the question,
/// or doesn't answer in time. It is the first start of a core, made before anything of an earlier run is touched, so
/// that one that can't be started costs nothing. `folder` is where it runs.
/// \throws ProcessStartException when it can't be started
[[nodiscard]] std::string AskCoreVersion(const std::string& corePath, const std::string& folder, const StopFlag& stop);

} // namespace Orvanta
