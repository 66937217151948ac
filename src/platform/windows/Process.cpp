#include "platform/Process.h"

#include "platform/windows/ChildStart.h"
#include "platform/windows/OutputPipe.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <array>
#include <cstdio>
#include <optional>

#include <windows.h>

namespace Orvanta {

struct Process::Handles {
    Handles(OutputReceiver output, OutputReceiver error)
        : standardOutput(std::move(output)), standardError(std::move(error)) {}

    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    ~Handles() {
        if (child.process.IsOpen() && !exitStatus) {
            EndTree();
            // Until it is gone it holds its files, which the caller may be about to remove.
            ::WaitForSingleObject(child.process.Get(), INFINITE);
        }
    }

    void Start(const Arguments& command, const StartConditions& conditions);
    void Look(DWORD milliseconds);
    void EndTree() noexcept;
    void TakeStatus();

    OutputPipe standardOutput;
    OutputPipe standardError;
    StartedChild child;
    std::optional<int> exitStatus;
    ProcessCost cost; // but for the wall time
    bool isToBeKilled = false;
    ProcessGroup group = ProcessGroup::Own;
};

void Process::Handles::Start(const Arguments& command, const StartConditions& conditions) {
    group = conditions.group;
    child = StartChild(command, conditions, {standardOutput.ChildEnd(), standardError.ChildEnd()});
    standardOutput.StartReading();
    standardError.StartReading();
}

// Waits, at most for the given time, for something to happen, and deals with it.
void Process::Handles::Look(DWORD milliseconds) {
    std::array<HANDLE, 3> events{child.process.Get()};
    DWORD count = 1;
    for (const OutputPipe* const output : {&standardOutput, &standardError}) {
        if (output->IsOpen()) {
            events[count++] = output->Event();
        }
    }
    const DWORD event = ::WaitForMultipleObjects(count, events.data(), FALSE, milliseconds);
    if (event == WAIT_FAILED) {
        throw ProcessException("Couldn't wait for a child process: " + SystemReason(::GetLastError()));
    }
    if (event == WAIT_TIMEOUT) {
        return;
    }
    // The outputs before the end: what the child wrote last is handed on before its code is known.
    standardOutput.Receive();
    standardError.Receive();
    if (event != WAIT_OBJECT_0) {
        return;
    }
    standardOutput.Drain();
    standardError.Drain();
    TakeStatus();
}

// By the job where there is one: the list of processes misses those whose parent is gone already.
void Process::Handles::EndTree() noexcept {
    if (child.job.IsOpen()) {
        child.job.Terminate();
    } else if (group == ProcessGroup::Own) {
        TerminateTree(child.process.Get());
    } else {
        ::TerminateProcess(child.process.Get(), 1);
    }
}

// To be called once the child has ended; nothing of it is open then.
void Process::Handles::TakeStatus() {
    DWORD code = 0;
    ::GetExitCodeProcess(child.process.Get(), &code);
    exitStatus = static_cast<int>(code);
    cost = CostOf(child.process.Get(), child.job);
    // What it leaves behind on purpose, such as a compiler's server, lives on.
    if (!isToBeKilled && child.job.IsOpen()) {
        child.job.LetGo();
    }
    // Closes the job too.
    child = {};
}

Process::Process(const Arguments& command, const StartConditions& conditions, OutputReceiver standardOutput,
                 OutputReceiver standardError) {
    RequireStartable(command);
    const Arguments launched = WithLauncher(command, conditions.launcher);
    try {
        handles_ = std::make_unique<Handles>(std::move(standardOutput), std::move(standardError));
        handles_->Start(launched.empty() ? command : launched, conditions);
        hasLauncher_ = !launched.empty();
    } catch (const SystemFault& fault) {
        throw ProcessStartException(command.front(), SystemReason(fault.error),
                                    ProcessStartException::Cause::Resources);
    }
}

Process::~Process() {
    SayFarewell();
}

std::optional<int> Process::Look(std::optional<std::chrono::milliseconds> longest) {
    if (!exitStatus_) {
        handles_->Look(longest ? static_cast<DWORD>(longest->count()) : INFINITE);
        if (handles_->exitStatus) {
            handles_->cost.wall = Cost().wall;
            cost_ = handles_->cost;
            exitStatus_ = handles_->exitStatus;
        }
    }
    return exitStatus_;
}

// A program without a window of its own can't be asked to end.
void Process::End(bool /*force*/) noexcept {
    handles_->isToBeKilled = true;
    handles_->EndTree();
}

// To all of its group that share our console: there is no way to one program alone.
bool Process::AskToEnd() noexcept {
    handles_->isToBeKilled = true;
    return ::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, ::GetProcessId(handles_->child.process.Get())) != FALSE;
}

// The system has no such limit.
void MakeRoomForChildren(std::size_t /*children*/) noexcept {}

std::string RunAndRead(const std::string& commandLine) {
    // The interpreter takes the first and the last quote off what it is given, whatever stands between them.
    std::FILE* const pipe = ::_wpopen(ToWide('"' + commandLine + '"').c_str(), L"r");
    if (pipe == nullptr) {
        throw ProcessException("Couldn't run process: " + commandLine);
    }
    std::string output;
    std::array<char, 1024> block{};
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe)) {
        output.append(block.data(), count);
    }
    ::_pclose(pipe);
    return FromConsoleCodePage(output);
}

} // namespace Orvanta
