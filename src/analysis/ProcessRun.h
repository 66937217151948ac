#pragma once

#include "platform/Process.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Where and with what a child is started.
/// Both outlive the start.
struct ProcessPlace {
    const std::string& workingDirectory;
    const EnvironmentBlock& environment;
};

/// Starts a child, gathers its output and waits until it ends or the user stops; after a stop the child and all that it
/// started are gone.
/// \throws ProcessException
[[nodiscard]] ProcessOutcome RunSupervised(const Arguments& command, ProcessPlace place, const StopFlag& stop,
                                           CapturedOutput& output);

/// The line of a failed child's output that tells most: the first with "error" in it, else the first that isn't blank.
[[nodiscard]] std::string_view TellingLine(std::string_view output);

} // namespace Orvanta
