#pragma once

#include "platform/Process.h"
#include "platform/StopFlag.h"

#include <string>

namespace Orvanta {

/// What a core says to "--version".
struct CoreAnswer {
    std::string version;   ///< the first line that it prints; empty when it doesn't know the question or is too slow
    std::string notes;     ///< the lines below it, for the user
    std::string complaint; ///< what it says when it fails, else empty
};

/// Asks a core for its version. It is the first start of a core, made before anything of an earlier run is touched, so
/// that one that can't be started costs nothing. `folder` is where it runs.
/// \throws ProcessStartException when it can't be started
[[nodiscard]] CoreAnswer AskCoreVersion(const std::string& corePath, const std::string& folder, const StopFlag& stop,
                                        LauncherWords launcher = {});

} // namespace Orvanta
