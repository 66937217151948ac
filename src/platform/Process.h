#pragma once

// Children: how they are started, waited for, judged and ended.
//
// A child belongs to the thread that started it. That thread alone waits for it, and receives its outputs while it
// waits: no reading threads, no queue, nothing to be locked. A wait blocks in the system until the child ends or
// writes, and comes back to look at the stop flag every `PollInterval`; nothing sleeps while its child is already dead.
//
// Each child gets a process group (a job) of its own, so that ending it ends what it started, and Ctrl+C in a terminal
// does not reach it past us. A child may be started by another program, a launcher, that runs it on another machine: no
// group reaches there, so that the launcher is asked to end, and has a moment to hand that on. Why no library for this:
// those at hand start a shell, read with a thread for each output, or wait by polling, and none says whether the
// program or its folder was at fault.

#include "platform/Environment.h"
#include "platform/Exceptions.h"
#include "platform/ProcessCost.h"
#include "platform/StopFlag.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

using Arguments = std::vector<std::string>;

/// Words that stand before the command of a child: their program starts it in its turn, maybe on another machine. Empty
/// for a child that is started by us.
using LauncherWords = std::span<const std::string>;

/// Both outputs of a child, captured whole.
struct CapturedOutput {
    std::string standardOutput;
    std::string standardError;
};

/// Base of the errors of child processes. The unit that started the child catches it, or the entry.
class ProcessException : public ZelmException {
public:
    using ZelmException::ZelmException;
};

/// A child could not be started: the text names the program, the folder where it was that, and the reason.
class ProcessStartException : public ProcessException {
public:
    enum class Cause {
        Program,   ///< the program is missing or can't be run: no start of it will succeed
        Directory, ///< the working directory can't be entered
        Command,   ///< its words can't be handed on: too long, or with a zero byte inside
        Resources, ///< the system had no room (open files, processes, memory): a later start may succeed
    };

    /// The program itself, or the system, is at fault. `reason` is without a full stop.
    ProcessStartException(const std::string& program, std::string reason, Cause cause);

    /// The child's folder is at fault.
    ProcessStartException(const std::string& program, const std::string& directory, std::string reason);

    /// Whether another try may succeed, and with what changed.
    [[nodiscard]] Cause WhatFailed() const noexcept { return cause_; }

    /// The system's words, or ours where the system was never asked.
    [[nodiscard]] const std::string& Reason() const noexcept { return reason_; }

private:
    Cause cause_;
    std::string reason_;
};

/// A child ended with a non-zero code.
class ProcessReturnCodeException : public ProcessException {
public:
    /// Short form: the text is the command line and the code.
    ProcessReturnCodeException(const Arguments& command, int exitCode);
    /// Full form: the text has both captured outputs as well, each whole.
    ProcessReturnCodeException(const Arguments& command, int exitCode, CapturedOutput output);

    /// Never 0.
    [[nodiscard]] int ExitCode() const noexcept { return exitCode_; }

    /// The text of the short form: where it goes into a line, and the outputs elsewhere.
    [[nodiscard]] const std::string& Summary() const noexcept { return summary_; }

    /// Empty in the short form.
    [[nodiscard]] const CapturedOutput& Output() const noexcept { return output_; }

private:
    int exitCode_;
    std::string summary_;
    CapturedOutput output_;
};

/// A child was killed because its time was up.
class ProcessInterruptedException : public ProcessException {
public:
    /// The text is the command line, and that it was interrupted.
    explicit ProcessInterruptedException(const Arguments& command);
};

/// Takes each block of bytes that a child writes to one of its outputs.
using OutputReceiver = std::function<void(std::string_view bytes)>;

/// A receiver that appends every block to `target`, which must outlive the child.
[[nodiscard]] OutputReceiver MakeRedirectToStringProcessor(std::string& target);

/// The words of a command joined by single blanks, unquoted: how messages show it.
[[nodiscard]] std::string CommandLineText(const Arguments& command);

/// The command with the launcher's words before it; empty when there are none.
[[nodiscard]] Arguments WithLauncher(const Arguments& command, LauncherWords launcher);

/// Whether a command has more words than the system takes in one command line. False where that can't be told
/// beforehand: the start then fails.
[[nodiscard]] bool IsTooLongToStart(const Arguments& command);

/// Which processes are killed together with a child.
enum class ProcessGroup {
    Own,       ///< all that it started
    Inherited, ///< it ends with its parent's group: for a program that is itself such a child
};

/// What a child finds when it starts, beside its command.
struct StartConditions {
    std::string workingDirectory;        ///< empty: the current one
    const EnvironmentBlock& environment; ///< the child's whole environment; need not outlive the start
    ProcessGroup group = ProcessGroup::Own;
    LauncherWords launcher = {}; ///< need not outlive the start
};

/// A supervised child process, started from an argument vector without a shell, with nothing on its standard input, in
/// a process group (a job) of its own unless its conditions say otherwise. The destructor kills what is still running
/// of it and takes its status; a launcher is asked first, and has `LongestFarewell` to end what it has started. One
/// thread at a time may use an object; its receivers are called on that thread, from within the functions below and the
/// destructor.
class Process {
public:
    /// Starts `command[0]` (a path, or a name looked up along PATH) in `workingDirectory` (empty: the current one).
    /// `environment` is the child's whole environment.
    /// \throws ProcessStartException
    Process(const Arguments& command, const std::string& workingDirectory, const EnvironmentBlock& environment,
            OutputReceiver standardOutput, OutputReceiver standardError);
    /// The same with all that can be said about the start.
    Process(const Arguments& command, const StartConditions& conditions, OutputReceiver standardOutput,
            OutputReceiver standardError);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Looks without waiting: true, with the code, when the child has ended and its output has been received whole.
    /// A child ended by signal N has the code 128 + N, a killed one 1 where there are no signals.
    [[nodiscard]] bool try_get_exit_status(int& exitStatus);

    /// Waits without limit for the end of the child and returns its code.
    int get_exit_status();

    /// Asks the child and what it started to end; with `force`, and on a system that knows no such question, ends them.
    /// Of a child with a launcher, `force` asks the launcher alone first, and blocks until it has ended or had its
    /// time. Nothing is done to a child whose end has been seen.
    void kill(bool force = false);

    /// Blocks until the child has ended, has written something, or `longest` has passed, and receives what was written.
    /// True when the child has ended. May come back early for no reason.
    bool WaitForChange(std::chrono::milliseconds longest);

    /// Whether an earlier call has seen the end of the child: a question to this object, not to the system.
    [[nodiscard]] bool HasEnded() const noexcept;

    /// What the child took, once its end has been seen; until then only the time that has passed. It was measured when
    /// its status was taken, so the question costs nothing.
    [[nodiscard]] ProcessCost Cost() const noexcept;

private:
    using Clock = std::chrono::steady_clock;

    /// What no system can start.
    /// \throws ProcessStartException
    static void RequireStartable(const Arguments& command);

    /// Waits, at most that long (nothing: without limit), for something to happen, and deals with it. The code of the
    /// child once it has ended.
    std::optional<int> Look(std::optional<std::chrono::milliseconds> longest);

    /// Asks a launcher that runs to end what it has started, and gives it time for that. Once.
    void SayFarewell() noexcept;

    /// Asks all of a child that runs to end, or ends it.
    void End(bool force) noexcept;

    /// Asks the child, and nothing that it started, to end; false where the system can't. What it leaves behind of its
    /// group is killed when it has ended.
    bool AskToEnd() noexcept;

    struct Handles; // the system's handles of the child and of its pipes
    std::unique_ptr<Handles> handles_;
    std::optional<int> exitStatus_;
    const Clock::time_point start_ = Clock::now();
    bool hasLauncher_ = false; // that runs
    ProcessCost cost_;         // once it has ended
};

/// How a wait ended. When `finished` is false, `exitCode` is 0 after a stop request and 1 after a time-out.
struct WaitResult {
    int exitCode = 0;
    bool finished = false;
};

/// How long a launcher may take to end what it has started before it is killed.
inline constexpr std::chrono::seconds LongestFarewell{2};

/// How long a program is waited for that is to answer a question, and would do so within `usual`: what a launcher
/// starts may have to wait for its turn.
[[nodiscard]] std::chrono::milliseconds AnswerTimeout(std::chrono::milliseconds usual, LauncherWords launcher) noexcept;

/// The longest time between two looks at a child and at the stop flag.
inline constexpr std::chrono::milliseconds PollInterval{100};

/// Waits for the end of the child, for a stop request, or until `timeout` has passed; zero looks once.
[[nodiscard]] WaitResult WaitWithTimeout(Process& process, std::chrono::milliseconds timeout,
                                         std::chrono::milliseconds pollInterval, const StopFlag& stop);

/// Waits for the end of the child or for a stop request.
[[nodiscard]] WaitResult WaitUntilEndOrStop(Process& process, const StopFlag& stop);

/// What a child's end means where it is no exception.
enum class ProcessOutcome { Succeeded = 0, Stopped = 4 };

/// Judges the end of a child. A time-out kills the child and all that it started.
/// \throws ProcessReturnCodeException, full form, when the child failed
/// \throws ProcessInterruptedException after a time-out
[[nodiscard]] ProcessOutcome JudgeEnd(const Arguments& command, WaitResult result, Process& process,
                                      const CapturedOutput& output);

/// Has the system let this process open what so many children at once need, as far as it may; children get that too.
void MakeRoomForChildren(std::size_t children) noexcept;

/// Hands one command line to the system's command interpreter and returns all of its standard output. Standard error is
/// not captured and the exit status is not looked at.
/// \throws ProcessException "Couldn't run process: " and the command line
[[nodiscard]] std::string RunAndRead(const std::string& commandLine);

} // namespace Orvanta
