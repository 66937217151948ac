#include "platform/ChildWatch.h"

#include "platform/Process.h"
#include "platform/TemporaryPlace.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/WatchedChildren.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <set>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvanta {

namespace {

constexpr const char* WatcherWord = "--watch-children";

enum class Note : std::uint64_t {
    Start,    // of a group, by its number
    Launcher, // the same, of one whose leader is to be asked to end
    End,      // of either
    Input,    // the number of the children's standard input
    Folder,   // the length of its path, which follows
    Farewell, // nothing is left to be done
};

// Of one size, and far shorter than what a pipe takes in one piece: those of several threads don't mix.
struct Record {
    Note note;
    std::uint64_t value;
};

// The watched process's side. Set by the thread that starts the watcher, for which all others wait.
struct Watched {
    std::once_flag once;
    bool isWanted = false; // there is a ChildWatch
    Descriptor pipe;       // to the watcher
    Descriptor input;
    pid_t watcher = -1;
};

Watched& State() noexcept {
    static Watched state;
    return state;
}

// In one call: whole or not at all. A full pipe has a watcher that was stopped behind it.
void Tell(const Descriptor& pipe, std::string_view bytes) noexcept {
    while (::write(pipe.Number(), bytes.data(), bytes.size()) < 0 && errno == EINTR) {
    }
}

void Tell(const Descriptor& pipe, Note note, std::uint64_t value) noexcept {
    const Record record{note, value};
    Tell(pipe, {reinterpret_cast<const char*>(&record), sizeof record});
}

void TellFolder(const Descriptor& pipe, const std::string& folder) {
    const Record record{Note::Folder, folder.size()};
    std::string text(reinterpret_cast<const char*>(&record), sizeof record);
    Tell(pipe, text += folder);
}

struct PipeEnds {
    Descriptor read;
    Descriptor write;

    PipeEnds() noexcept {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            read = Descriptor(ends[0]);
            write = Descriptor(ends[1]);
        }
    }
};

// With a session of its own: what a terminal sends to this process and its group is not for the watcher.
pid_t SpawnWatcher(int input) {
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    if (::posix_spawnattr_init(&attributes) != 0) {
        return -1;
    }
    if (::posix_spawn_file_actions_init(&actions) != 0) {
        ::posix_spawnattr_destroy(&attributes);
        return -1;
    }
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        // Whoever reads our outputs must not wait for the watcher.
        ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    std::string name = "orvanta-analyzer";
    std::string word = WatcherWord;
    const std::array<char*, 3> arguments{name.data(), word.data(), nullptr};
    // Of the variables only what the program may need to be loaded.
    const char* const libraries = std::getenv("LD_LIBRARY_PATH");
    std::string variable = std::string("LD_LIBRARY_PATH=") + (libraries == nullptr ? "" : libraries);
    const std::array<char*, 2> variables{libraries == nullptr ? nullptr : variable.data(), nullptr};
    pid_t watcher = -1;
    // By this name also when the program's file was replaced meanwhile, as an update does.
    const int fault =
        ::posix_spawn(&watcher, "/proc/self/exe", &actions, &attributes, arguments.data(), variables.data());
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
    return fault == 0 ? watcher : -1;
}

void Start(Watched& state) {
    if (!state.isWanted) {
        return;
    }
    PipeEnds records;
    PipeEnds empty; // its other end is closed below: whoever reads it is at the end at once

    struct stat status {};

    if (!records.read.IsOpen() || !empty.read.IsOpen() || ::fstat(empty.read.Number(), &status) != 0) {
        return;
    }
    state.watcher = SpawnWatcher(records.read.Number());
    if (state.watcher < 0) {
        return;
    }
    ::fcntl(records.write.Number(), F_SETFL, O_NONBLOCK);
    Tell(records.write, Note::Input, status.st_ino);
    state.input = std::move(empty.read);
    state.pipe = std::move(records.write);
}

} // namespace

void StartWatcher() noexcept {
    Watched& state = State();
    try {
        std::call_once(state.once, [&state] { Start(state); });
    } catch (...) {
        // No memory: the run goes on without.
        return;
    }
}

int WatchedInput() noexcept {
    return State().input.Number();
}

void NoteStart(pid_t group, WatchedReach reach) noexcept {
    if (State().pipe.IsOpen()) {
        const Note note = reach == WatchedReach::Launcher ? Note::Launcher : Note::Start;
        Tell(State().pipe, note, static_cast<std::uint64_t>(group));
    }
}

void NoteEnd(pid_t group) noexcept {
    if (State().pipe.IsOpen()) {
        Tell(State().pipe, Note::End, static_cast<std::uint64_t>(group));
    }
}

void RemoveWhenKilled(const std::string& folder) {
    StartWatcher();
    if (State().pipe.IsOpen()) {
        TellFolder(State().pipe, folder);
    }
}

ChildWatch::ChildWatch() noexcept {
    State().isWanted = true;
}

ChildWatch::~ChildWatch() {
    constexpr int LongestEnd = 1000; // milliseconds: one that was stopped must not stop us
    Watched& state = State();
    if (state.watcher < 0) {
        return;
    }
    const Descriptor end(static_cast<int>(::syscall(SYS_pidfd_open, state.watcher, 0)));
    Tell(state.pipe, Note::Farewell, 0);
    state.pipe.Reset();
    pollfd ended{.fd = end.Number(), .events = POLLIN, .revents = 0};
    while (end.IsOpen() && ::poll(&ended, 1, LongestEnd) < 0 && errno == EINTR) {
    }
    ::waitpid(state.watcher, nullptr, WNOHANG);
}

namespace {

// What the watcher knows of the watched process.
struct Known {
    std::set<pid_t> groups;
    std::set<pid_t> launchers; // those of the groups that they lead
    std::uint64_t input = 0;
    std::vector<std::string> folders;
};

bool ReadWhole(void* target, std::size_t size) noexcept {
    auto* next = static_cast<char*>(target);
    while (size > 0) {
        const ssize_t count = ::read(STDIN_FILENO, next, size);
        if (count > 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

// False when the pipe has closed before its end.
bool ReadFolder(std::uint64_t length, Known& known) {
    constexpr std::uint64_t LongestPath = 65536;
    std::string path(std::min(length, LongestPath), '\0');
    if (!ReadWhole(path.data(), path.size())) {
        return false;
    }
    known.folders.push_back(std::move(path));
    return true;
}

// Returns when the pipe has closed; true after a farewell.
bool ReadNotes(Known& known) {
    Record record{};
    while (ReadWhole(&record, sizeof record)) {
        switch (record.note) {
        case Note::Start:
            known.groups.insert(static_cast<pid_t>(record.value));
            break;
        case Note::Launcher:
            known.groups.insert(static_cast<pid_t>(record.value));
            known.launchers.insert(static_cast<pid_t>(record.value));
            break;
        case Note::End:
            known.groups.erase(static_cast<pid_t>(record.value));
            known.launchers.erase(static_cast<pid_t>(record.value));
            break;
        case Note::Input:
            known.input = record.value;
            break;
        case Note::Folder:
            if (!ReadFolder(record.value, known)) {
                return false;
            }
            break;
        case Note::Farewell:
            return true;
        }
    }
    return false;
}

// Those whose start the watched process did not live to tell of: the pipe has closed only when their programs had
// begun, as until then they hold our other end of it.
void KillUntold(std::uint64_t input) {
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        pid_t process = 0;
        const auto [stop, fault] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (fault != std::errc() || stop != name.data() + name.size()) {
            continue; // no process
        }

        struct stat status {};

        const std::string path = "/proc/" + name + "/fd/0";
        if (::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode) && status.st_ino == input) {
            if (const pid_t group = ::getpgid(process); group > 0) {
                ::kill(-group, SIGKILL);
            }
        }
    }
}

// Those that are left have had their time.
void AskLaunchers(const std::set<pid_t>& launchers) {
    constexpr std::chrono::milliseconds Pause{10};
    for (const pid_t launcher : launchers) {
        ::kill(launcher, SIGTERM);
    }
    const auto end = std::chrono::steady_clock::now() + LongestFarewell;
    const auto isThere = [](pid_t launcher) {
        return ::kill(launcher, 0) == 0;
    };
    // No end wakes the watcher: it is the parent of none of them.
    while (std::any_of(launchers.begin(), launchers.end(), isThere) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(Pause);
    }
}

// A process that is being killed may still make a file.
void RemoveFolder(const std::string& folder) {
    constexpr int MostAttempts = 200;
    constexpr std::chrono::milliseconds Pause{10};

    struct stat status {};

    for (int attempt = 0; attempt < MostAttempts && ::lstat(folder.c_str(), &status) == 0; ++attempt) {
        if (attempt > 0) {
            std::this_thread::sleep_for(Pause);
        }
        RemoveTree(folder);
    }
}

// Lets go of all that was inherited and could hold up somebody else.
void StandAside() {
    constexpr unsigned FirstOther = 3;
    ::syscall(SYS_close_range, FirstOther, ~0U, 0);
    if (::chdir("/") != 0) {
        return; // then a folder is in use a moment longer
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
}

} // namespace

std::optional<int> WatchIfAsked(int argumentCount, const char* const* arguments) {
    struct stat status {};

    // By hand, nobody has a pipe to say such things.
    if (argumentCount != 2 || std::strcmp(arguments[1], WatcherWord) != 0 || ::fstat(STDIN_FILENO, &status) != 0 ||
        !S_ISFIFO(status.st_mode)) {
        return std::nullopt;
    }
    StandAside();
    Known known;
    if (ReadNotes(known)) {
        return 0;
    }
    AskLaunchers(known.launchers);
    for (const pid_t group : known.groups) {
        if (group > 1) {
            ::kill(-group, SIGKILL);
        }
    }
    KillUntold(known.input);
    for (const std::string& folder : known.folders) {
        RemoveFolder(folder);
    }
    return 0;
}

} // namespace Orvanta
