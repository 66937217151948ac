#include "platform/Process.h"

#include "platform/Paths.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/SearchPath.h"
#include "platform/posix/WatchedChildren.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvanta {

namespace {

// A step of the start has failed. Never leaves this file: it becomes the exception that names the program.
struct SystemFault {
    int error; // of errno
};

using Cause = ProcessStartException::Cause;

// What an error of the start lets a caller hope for.
Cause CauseOf(int error) {
    switch (error) {
    // What passes by itself: limits that other programs share with us, and a program that is still being written.
    case EAGAIN:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ETXTBSY:
        return Cause::Resources;
    case E2BIG:
        return Cause::Command;
    default:
        return Cause::Program;
    }
}

// What keeps a child from working in `directory`, as a value of errno; 0 when nothing does.
int FaultOfDirectory(const std::string& directory) {
    struct stat status {};

    if (::stat(directory.c_str(), &status) != 0) {
        return errno;
    }
    if (!S_ISDIR(status.st_mode)) {
        return ENOTDIR;
    }
    return ::access(directory.c_str(), X_OK) == 0 ? 0 : errno;
}

// A failed start doesn't say whether it was the program or the folder.
[[noreturn]] void FailToStart(const std::string& program, const std::string& directory, int error) {
    if (!directory.empty()) {
        if (const int fault = FaultOfDirectory(directory); fault != 0) {
            throw ProcessStartException(program, directory, SystemReason(fault));
        }
    }
    throw ProcessStartException(program, SystemReason(error), CauseOf(error));
}

// The path to start: `program` itself when it is one, otherwise where PATH of the child's environment finds it.
std::string ResolveProgram(const std::string& program, const std::string& directory,
                           const EnvironmentBlock& environment) {
    // The child's own PATH: the system's look-up would take ours.
    constexpr std::string_view Prefix = "PATH=";
    if (program.find('/') != std::string::npos) {
        return program;
    }
    for (const std::string& entry : environment.Entries()) {
        if (entry.starts_with(Prefix)) {
            return FindAlong(program, std::string_view(entry).substr(Prefix.size()), directory);
        }
    }
    return {};
}

// Pointers to the texts, ended by a null pointer, in the form in which the system takes them. It writes to none of
// them.
std::vector<char*> PointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// How every child starts: in its process group, with no signal blocked and those that we handle or ignore as the system
// has them. Made once for each kind of group; never written again.
// Not `fork`: a copy of a process that has many threads is dear, and almost nothing may be done in it.
class SpawnAttributes {
public:
    explicit SpawnAttributes(ProcessGroup group) {
        const int groupFlag = group == ProcessGroup::Own ? POSIX_SPAWN_SETPGROUP : 0;
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setflags(&attributes_,
                                   static_cast<short>(groupFlag | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
        // 0: a new group with the child's own number, by which `-pid` reaches all of it.
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        // An ignored signal would stay ignored in the child, and a compiler that writes into a closed pipe would not be
        // ended by that.
        for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGQUIT}) {
            ::sigaddset(&signals, signal);
        }
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    }

    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }

    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    [[nodiscard]] static const SpawnAttributes& For(ProcessGroup group) {
        static const SpawnAttributes own(ProcessGroup::Own);
        static const SpawnAttributes inherited(ProcessGroup::Inherited);
        return group == ProcessGroup::Own ? own : inherited;
    }

    [[nodiscard]] const posix_spawnattr_t* Get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

// What a child does between its birth and its program.
class SpawnActions {
public:
    SpawnActions() { Check(::posix_spawn_file_actions_init(&actions_)); }

    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void Redirect(int from, int to) { Check(::posix_spawn_file_actions_adddup2(&actions_, to, from)); }

    void ChangeDirectory(const std::string& directory) {
        Check(::posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str()));
    }

    [[nodiscard]] const posix_spawn_file_actions_t* Get() const noexcept { return &actions_; }

private:
    static void Check(int error) {
        if (error != 0) {
            throw SystemFault{error};
        }
    }

    posix_spawn_file_actions_t actions_{};
};

// Every child's standard input.
int EmptyInput() {
    if (const int watched = WatchedInput(); watched >= 0) {
        return watched;
    }
    static const Descriptor input = [] {
        Descriptor device = OpenFile("/dev/null", O_RDONLY);
        if (!device.IsOpen()) {
            throw SystemFault{errno};
        }
        return device;
    }();
    return input.Number();
}

std::chrono::microseconds DurationOf(const timeval& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

struct Pipe {
    Descriptor read;
    Descriptor write;

    Pipe() {
        std::array<int, 2> ends{};
        // Closed on exec in the same step: another thread may be starting a child right now.
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw SystemFault{errno};
        }
        read = Descriptor(ends[0]);
        write = Descriptor(ends[1]);
    }
};

// One output of a child: our end of the pipe and who takes its bytes.
struct Output {
    Descriptor pipe;
    OutputReceiver receiver;

    // Reads once, at most `most` bytes; only to be called when there is something to read or the end has come, as it
    // would block otherwise.
    std::size_t ReadBlock(std::size_t most) {
        constexpr std::size_t BlockSize = 65536; // what a pipe holds
        std::array<char, BlockSize> block;       // not initialised: most children write nothing
        ssize_t count = -1;
        // A signal ends the call, not the wait.
        do {
            count = ::read(pipe.Number(), block.data(), std::min(most, block.size()));
        } while (count < 0 && errno == EINTR);
        if (count <= 0) {
            pipe.Reset();
            return 0;
        }
        if (receiver) {
            receiver({block.data(), static_cast<std::size_t>(count)});
        }
        return static_cast<std::size_t>(count);
    }

    // `events` are what the system says of our end of the pipe.
    void Receive(short events) {
        if ((events & POLLIN) != 0) {
            ReadBlock(std::string::npos);
        } else if (events != 0) {
            pipe.Reset(); // nothing in it, and nobody left who could write
        }
    }

    // Reads what the child has left in the pipe. Another process may still hold the other end, and even write: it is
    // not waited for.
    void Drain() {
        int waiting = 0;
        if (!pipe.IsOpen() || ::ioctl(pipe.Number(), FIONREAD, &waiting) != 0) {
            return;
        }
        // As much as is there now, not up to the end: that comes only when the last holder of the other end is gone.
        auto left = static_cast<std::size_t>(waiting);
        while (left > 0 && pipe.IsOpen()) {
            left -= ReadBlock(left);
        }
        pipe.Reset();
    }
};

} // namespace

struct Process::Handles {
    pid_t pid = -1;
    Descriptor end; // becomes readable when the child ends
    Output standardOutput;
    Output standardError;
    std::optional<int> exitStatus;
    ProcessCost cost; // but for the wall time
    bool isToBeKilled = false;
    ProcessGroup group = ProcessGroup::Own;

    Handles() = default;
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    ~Handles() {
        if (pid > 0 && !exitStatus) {
            // An object that goes while its child runs is one whose owner has given up.
            SendSignal(SIGKILL);
            TakeStatus();
        }
    }

    void Start(const Arguments& command, const StartConditions& conditions);
    void Look(int milliseconds);

    void SendSignal(int signal) const noexcept { ::kill(group == ProcessGroup::Own ? -pid : pid, signal); }

    void TakeStatus() noexcept;
};

void Process::Handles::Start(const Arguments& command, const StartConditions& conditions) {
    const std::string& workingDirectory = conditions.workingDirectory;
    group = conditions.group;
    if (group == ProcessGroup::Own) {
        StartWatcher();
    }
    const std::string program = ResolveProgram(command.front(), workingDirectory, conditions.environment);
    Pipe output;
    Pipe error;
    SpawnActions actions;
    actions.Redirect(STDIN_FILENO, EmptyInput());
    actions.Redirect(STDOUT_FILENO, output.write.Number());
    actions.Redirect(STDERR_FILENO, error.write.Number());
    if (!workingDirectory.empty()) {
        actions.ChangeDirectory(workingDirectory);
    }
    const std::vector<char*> arguments = PointersTo(command);
    const std::vector<char*> variables = PointersTo(conditions.environment.Entries());
    // Gives the error of the exec too, so no pipe is needed to hear of it.
    const int fault = program.empty()
                          ? ENOENT
                          : ::posix_spawn(&pid, program.c_str(), actions.Get(), SpawnAttributes::For(group).Get(),
                                          arguments.data(), variables.data());
    if (fault != 0) {
        pid = -1;
        FailToStart(command.front(), workingDirectory, fault);
    }
    if (group == ProcessGroup::Own) {
        NoteStart(pid, conditions.launcher.empty() ? WatchedReach::Group : WatchedReach::Launcher);
    }
    // Ours must go, or the pipes would never come to their end.
    output.write.Reset();
    error.write.Reset();
    end = Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); // not every C library has a function for it
    // The child runs already: the destructor kills it, as its number is known.
    if (!end.IsOpen()) {
        throw SystemFault{errno};
    }
    standardOutput.pipe = std::move(output.read);
    standardError.pipe = std::move(error.read);
}

// Waits, at most for the given time (-1: without limit), for something to happen, and deals with it.
void Process::Handles::Look(int milliseconds) {
    std::array<pollfd, 3> events = {{
        {.fd = end.Number(), .events = POLLIN, .revents = 0},
        {.fd = standardOutput.pipe.Number(), .events = POLLIN, .revents = 0},
        {.fd = standardError.pipe.Number(), .events = POLLIN, .revents = 0},
    }};
    // One wait for all three. A closed output has the number -1, which the system passes over.
    const int count = ::poll(events.data(), events.size(), milliseconds);
    if (count < 0 && errno != EINTR) {
        throw ProcessException("Couldn't wait for a child process: " + SystemReason(errno));
    }
    if (count <= 0) {
        return;
    }
    // The outputs before the end: what the child wrote last is handed on before its code is known.
    standardOutput.Receive(events[1].revents);
    standardError.Receive(events[2].revents);
    if (events[0].revents == 0) {
        return;
    }
    standardOutput.Drain();
    standardError.Drain();
    if (isToBeKilled) {
        SendSignal(SIGKILL); // the rest of its group; while its status isn't taken, the number can't be another's
    }
    TakeStatus();
    end.Reset();
}

// To be called once the child has ended, or is about to: waits for that.
void Process::Handles::TakeStatus() noexcept {
    if (group == ProcessGroup::Own) {
        NoteEnd(pid);
    }
    int status = 0;
    pid_t taken = -1;
    rusage usage{};
    do {
        taken = ::wait4(pid, &status, 0, &usage);
    } while (taken < 0 && errno == EINTR);
    cost.processor = DurationOf(usage.ru_utime) + DurationOf(usage.ru_stime);
    constexpr std::uint64_t UnitOfMemory = 1024;
    cost.peakMemory = static_cast<std::uint64_t>(usage.ru_maxrss) * UnitOfMemory;
    // What shells give for a child that a signal has ended.
    constexpr int SignalBase = 128;
    exitStatus = WIFSIGNALED(status) ? SignalBase + WTERMSIG(status) : WEXITSTATUS(status);
}

Process::Process(const Arguments& command, const StartConditions& conditions, OutputReceiver standardOutput,
                 OutputReceiver standardError)
    : handles_(std::make_unique<Handles>()) {
    RequireStartable(command);
    const Arguments launched = WithLauncher(command, conditions.launcher);
    handles_->standardOutput.receiver = std::move(standardOutput);
    handles_->standardError.receiver = std::move(standardError);
    try {
        handles_->Start(launched.empty() ? command : launched, conditions);
        hasLauncher_ = !launched.empty();
    } catch (const SystemFault& fault) {
        throw ProcessStartException(command.front(), SystemReason(fault.error), Cause::Resources);
    }
}

Process::~Process() {
    SayFarewell();
}

std::optional<int> Process::Look(std::optional<std::chrono::milliseconds> longest) {
    if (!exitStatus_) {
        handles_->Look(longest ? static_cast<int>(longest->count()) : -1);
        if (handles_->exitStatus) {
            handles_->cost.wall = Cost().wall;
            cost_ = handles_->cost;
            exitStatus_ = handles_->exitStatus;
        }
    }
    return exitStatus_;
}

void Process::End(bool force) noexcept {
    handles_->SendSignal(force ? SIGKILL : SIGTERM);
    // So that what is left of its group is ended once its own end is seen.
    handles_->isToBeKilled = true;
}

bool Process::AskToEnd() noexcept {
    handles_->isToBeKilled = true;
    return ::kill(handles_->pid, SIGTERM) == 0;
}

bool IsTooLongToStart(const Arguments& command) {
    // Words and variables of a child share one space, of which the words get half; a single word has a limit of its
    // own.
    constexpr std::size_t LongestWord = std::size_t{128} * 1024;
    // The system's own answer follows the limit of the stack, which users change.
    const long space = ::sysconf(_SC_ARG_MAX);
    const std::size_t most = space > 0 ? static_cast<std::size_t>(space) / 2 : std::size_t{1024} * 1024;
    std::size_t size = 0;
    for (const std::string& word : command) {
        size += word.size() + 1 + sizeof(char*);
        if (word.size() >= LongestWord) {
            return true;
        }
    }
    return size > most;
}

void MakeRoomForChildren(std::size_t children) noexcept {
    constexpr rlim_t FilesOfChild = 6; // five while it starts, and one for what is done with it
    constexpr rlim_t OtherFiles = 64;
    const rlim_t needed = FilesOfChild * children + OtherFiles;
    rlimit limit{};
    // Up to what is needed and no further: some programs look at each file that they might have open.
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < needed) {
        limit.rlim_cur = std::min(needed, limit.rlim_max);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

std::string RunAndRead(const std::string& commandLine) {
    std::FILE* const pipe = ::popen(commandLine.c_str(), "re");
    if (pipe == nullptr) {
        throw ProcessException("Couldn't run process: " + commandLine);
    }
    std::string output;
    std::array<char, 1024> block{};
    // To the end: a child that can't write any more would not end.
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe)) {
        output.append(block.data(), count);
    }
    ::pclose(pipe);
    return output;
}

} // namespace Orvanta
