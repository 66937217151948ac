#pragma once

#include "platform/Process.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// Where and with what a child is started.
/// All outlive the start.
struct ProcessPlace {
    const std::string& workingDirectory;
    const EnvironmentBlock& environment;
    LauncherWords launcher = {};
};

/// What a child may take before it is ended.
struct ChildLimits {
    std::optional<std::chrono::steady_clock::time_point> deadline = {};
    std::optional<std::uint64_t> outputBytes = {}; ///< on either output
};

/// Where what is known of a child goes, whatever its end was. Both outlive the run of it.
struct ChildRecord {
    CapturedOutput& output;
    /// Is added to. Of a child that was ended at a limit or by a stop, and of one that a launcher runs, its time alone.
    ProcessCost& cost;
};

/// A child was ended, or has failed, because of one of its limits. The text names the child and the option.
class LimitException : public ProcessException {
public:
    using ProcessException::ProcessException;
};

/// Starts a child, gathers its output and waits until it ends or the user stops; after a stop, and at a limit, the
/// child and all that it started are gone. \throws ProcessException; LimitException also for a child that has ended by
/// itself with too much output
[[nodiscard]] ProcessOutcome RunSupervised(const Arguments& command, ProcessPlace place, const ChildLimits& limits,
                                           const StopFlag& stop, ChildRecord record);

/// The line of a failed child's output that tells most: the first with "error" in it, else the first that isn't blank.
[[nodiscard]] std::string_view TellingLine(std::string_view output);

} // namespace Orvanta
