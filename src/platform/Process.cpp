#include "platform/Process.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr WaitResult Stopped{.exitCode = 0, .finished = false};
constexpr WaitResult TimedOut{.exitCode = 1, .finished = false};

} // namespace

ProcessReturnCodeException::ProcessReturnCodeException(const Arguments& command, int exitCode)
    : ProcessException(FillPlaceholders("Command \"%1%\" returned code %2%.",
                                        {CommandLineText(command), std::to_string(exitCode)})) {}

ProcessReturnCodeException::ProcessReturnCodeException(const Arguments& command, int exitCode,
                                                       std::string_view standardOutput, std::string_view standardError)
    : ProcessException(
          FillPlaceholders("Command \"%1%\" returned code %2%.\nStdout:\n%3%\nStderr:\n%4%",
                           {CommandLineText(command), std::to_string(exitCode), standardOutput, standardError})) {}

ProcessInterruptedException::ProcessInterruptedException(const Arguments& command)
    : ProcessException(FillPlaceholders("Command \"%1%\" was interrupted.", {CommandLineText(command)})) {}

OutputReceiver MakeRedirectToStringProcessor(std::string& target) {
    return [&target](std::string_view bytes) {
        target += bytes;
    };
}

std::string CommandLineText(const Arguments& command) {
    std::string text;
    for (const std::string& word : command) {
        if (&word != &command.front()) {
            text += ' ';
        }
        text += word;
    }
    return text;
}

WaitResult WaitWithTimeout(Process& process, std::chrono::milliseconds timeout, std::chrono::milliseconds pollInterval,
                           const StopFlag& stop) {
    using Clock = std::chrono::steady_clock;
    WaitResult result{.exitCode = 0, .finished = true};
    if (process.try_get_exit_status(result.exitCode)) {
        return result;
    }
    if (timeout == std::chrono::milliseconds::zero()) {
        return TimedOut;
    }
    const Clock::time_point start = Clock::now();
    std::chrono::milliseconds elapsed{0};
    while (elapsed <= timeout) {
        if (stop.IsSet()) {
            return Stopped;
        }
        // One more than what is left: the look at the very end of the time is part of it.
        if (process.WaitForChange(std::min(pollInterval, timeout - elapsed + std::chrono::milliseconds(1)))) {
            result.exitCode = process.get_exit_status();
            return result;
        }
        elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    }
    return TimedOut;
}

WaitResult WaitUntilEndOrStop(Process& process, const StopFlag& stop) {
    while (!process.HasEnded()) {
        if (stop.IsSet()) {
            return Stopped;
        }
        process.WaitForChange(PollInterval);
    }
    return {.exitCode = process.get_exit_status(), .finished = true};
}

ProcessOutcome JudgeEnd(const Arguments& command, WaitResult result, Process& process, const CapturedOutput& output) {
    if (result.finished) {
        if (result.exitCode != 0) {
            throw ProcessReturnCodeException(command, result.exitCode, output.standardOutput, output.standardError);
        }
        return ProcessOutcome::Succeeded;
    }
    if (result.exitCode == Stopped.exitCode) {
        return ProcessOutcome::Stopped;
    }
    process.kill(true);
    throw ProcessInterruptedException(command);
}

} // namespace Orvanta
