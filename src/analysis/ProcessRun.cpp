#include "analysis/ProcessRun.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

// An output up to its limit, beyond which nothing is kept.
class LimitedOutput {
public:
    LimitedOutput(std::string& target, std::optional<std::uint64_t> limit) : target_(target), limit_(limit) {}

    [[nodiscard]] OutputReceiver Receiver() {
        return [this](std::string_view bytes) {
            isOver_ = isOver_ || (limit_ && bytes.size() > *limit_ - target_.size());
            if (!isOver_) {
                target_ += bytes;
            }
        };
    }

    [[nodiscard]] bool IsOver() const noexcept { return isOver_; }

private:
    std::string& target_;
    std::optional<std::uint64_t> limit_;
    bool isOver_ = false;
};

} // namespace

ProcessOutcome RunSupervised(const Arguments& command, ProcessPlace place, const ChildLimits& limits,
                             const StopFlag& stop, ChildRecord record) {
    using Clock = std::chrono::steady_clock;
    LimitedOutput standardOutput(record.output.standardOutput, limits.outputBytes);
    LimitedOutput standardError(record.output.standardError, limits.outputBytes);
    Process process(command,
                    StartConditions{place.workingDirectory, place.environment, ProcessGroup::Own, place.launcher},
                    standardOutput.Receiver(), standardError.Receiver());
    const auto isOver = [&] {
        return standardOutput.IsOver() || standardError.IsOver();
    };
    // Its destructor ends the child, with all that it started, when one of these goes up.
    bool isLate = false;
    while (!process.HasEnded() && !isOver() && !stop.IsSet()) {
        const auto now = Clock::now();
        isLate = limits.deadline && now >= *limits.deadline;
        if (isLate) {
            break;
        }
        // Rounded up: a wait that ends too early would be made again and again.
        const auto left =
            limits.deadline ? std::chrono::ceil<std::chrono::milliseconds>(*limits.deadline - now) : PollInterval;
        process.WaitForChange(std::min(PollInterval, left));
    }
    record.cost += place.launcher.empty() ? process.Cost() : ProcessCost{.wall = process.Cost().wall};
    if (isLate) {
        throw LimitException("Timed out (--timeout). " + std::string(ProcessInterruptedException(command).what()));
    }
    if (isOver()) {
        throw LimitException("Too much output (--max-output) on standard " +
                             std::string(standardOutput.IsOver() ? "output. " : "error. ") +
                             ProcessInterruptedException(command).what());
    }
    const WaitResult result = process.HasEnded() ? WaitResult{process.get_exit_status(), true} : WaitResult{};
    return JudgeEnd(command, result, process, record.output);
}

std::string_view TellingLine(std::string_view output) {
    std::string_view firstLine;
    while (!output.empty()) {
        const std::string_view line = Trim(TakeLine(output));
        // Compilers print warnings and "In file included from" before what stopped them.
        if (ContainsIgnoringCase(line, "error")) {
            return line;
        }
        if (firstLine.empty()) {
            firstLine = line;
        }
    }
    return firstLine;
}

} // namespace Orvanta
