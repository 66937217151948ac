#include "platform/Process.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::chrono::milliseconds LongestWait = std::chrono::hours(24); // what every system can count

// Told apart by their codes, as JudgeEnd does.
constexpr WaitResult Stopped{.exitCode = 0, .finished = false};
constexpr WaitResult TimedOut{.exitCode = 1, .finished = false};

std::string ReturnCodeText(const Arguments& command, int exitCode) {
    return FillPlaceholders("Command \"%1%\" returned code %2%.", {CommandLineText(command), std::to_string(exitCode)});
}

} // namespace

ProcessStartException::ProcessStartException(const std::string& program, std::string reason, Cause cause)
    : ProcessException("Couldn't start \"" + program + "\": " + reason), cause_(cause), reason_(std::move(reason)) {}

ProcessStartException::ProcessStartException(const std::string& program, const std::string& directory,
                                             std::string reason)
    : ProcessException("Couldn't start \"" + program + "\" in \"" + directory + "\": " + reason),
      cause_(Cause::Directory), reason_(std::move(reason)) {}

ProcessReturnCodeException::ProcessReturnCodeException(const Arguments& command, int exitCode)
    : ProcessException(ReturnCodeText(command, exitCode)), exitCode_(exitCode), summary_(what()) {}

ProcessReturnCodeException::ProcessReturnCodeException(const Arguments& command, int exitCode, CapturedOutput output)
    : ProcessException(ReturnCodeText(command, exitCode) + "\nStdout:\n" + output.standardOutput + "\nStderr:\n" +
                       output.standardError),
      exitCode_(exitCode), summary_(ReturnCodeText(command, exitCode)), output_(std::move(output)) {}

ProcessInterruptedException::ProcessInterruptedException(const Arguments& command)
    : ProcessException(FillPlaceholders("Command \"%1%\" was interrupted.", {CommandLineText(command)})) {}

Process::Process(const Arguments& command, const std::string& workingDirectory, const EnvironmentBlock& environment,
                 OutputReceiver standardOutput, OutputReceiver standardError)
    : Process(command, StartConditions{workingDirectory, environment}, std::move(standardOutput),
              std::move(standardError)) {}

// No system can hand on an argument with a zero byte in it: what stands behind it would be lost.
void Process::RequireStartable(const Arguments& command) {
    using Cause = ProcessStartException::Cause;
    if (command.empty()) {
        throw ProcessStartException("", "the command is empty", Cause::Program);
    }
    for (const std::string& argument : command) {
        if (argument.find('\0') != std::string::npos) {
            const std::string& program = command.front();
            throw ProcessStartException(program.substr(0, program.find('\0')), "an argument holds a zero byte",
                                        Cause::Command);
        }
    }
}

void Process::kill(bool force) {
    if (force) {
        SayFarewell();
    }
    if (!exitStatus_) {
        End(force);
    }
}

void Process::SayFarewell() noexcept {
    if (!hasLauncher_ || exitStatus_) {
        return;
    }
    hasLauncher_ = false; // it is asked once
    const Clock::time_point end = Clock::now() + LongestFarewell;
    try {
        // What it writes meanwhile is received: one that can't write would not come to its end.
        for (bool isAsked = AskToEnd(); isAsked && Clock::now() < end && !WaitForChange(PollInterval);) {
        }
    } catch (...) {
        return; // it is killed all the same
    }
}

bool Process::try_get_exit_status(int& exitStatus) {
    if (!Look(std::chrono::milliseconds::zero())) {
        return false;
    }
    exitStatus = *exitStatus_;
    return true;
}

int Process::get_exit_status() {
    // An output that came, or a signal, ends the wait as well.
    while (!Look(std::nullopt)) {
    }
    return *exitStatus_;
}

bool Process::WaitForChange(std::chrono::milliseconds longest) {
    return Look(std::clamp(longest, std::chrono::milliseconds::zero(), LongestWait)).has_value();
}

bool Process::HasEnded() const noexcept {
    return exitStatus_.has_value();
}

ProcessCost Process::Cost() const noexcept {
    if (HasEnded()) {
        return cost_;
    }
    return {.wall = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start_)};
}

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

Arguments WithLauncher(const Arguments& command, LauncherWords launcher) {
    Arguments words(launcher.begin(), launcher.end());
    if (!words.empty()) {
        words.insert(words.end(), command.begin(), command.end());
    }
    return words;
}

std::chrono::milliseconds AnswerTimeout(std::chrono::milliseconds usual, LauncherWords launcher) noexcept {
    constexpr std::chrono::hours LongestTurn{1};
    return launcher.empty() ? usual : usual + LongestTurn;
}

WaitResult WaitWithTimeout(Process& process, std::chrono::milliseconds timeout, std::chrono::milliseconds pollInterval,
                           const StopFlag& stop) {
    using Clock = std::chrono::steady_clock;
    WaitResult result{.exitCode = 0, .finished = true};
    // A child that has ended has ended, whatever the flag or the time say.
    if (process.try_get_exit_status(result.exitCode)) {
        return result;
    }
    if (timeout == std::chrono::milliseconds::zero()) {
        return TimedOut;
    }
    // The steady clock: the time of day may be set while we wait.
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
            throw ProcessReturnCodeException(command, result.exitCode, output);
        }
        return ProcessOutcome::Succeeded;
    }
    if (result.exitCode == Stopped.exitCode) {
        return ProcessOutcome::Stopped;
    }
    // With force: it has had its time.
    process.kill(true);
    throw ProcessInterruptedException(command);
}

} // namespace Orvanta
