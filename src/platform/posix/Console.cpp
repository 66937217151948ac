#include "platform/Console.h"

#include "platform/ColourChoice.h"
#include "platform/ConsoleStream.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/posix/Descriptor.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <limits>
#include <optional>
#include <string>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Orvanta {

namespace {

std::atomic<StopFlag*> flagToSet = nullptr; // set once, before the handler is there
static_assert(std::atomic<StopFlag*>::is_always_lock_free, "the interrupt handler may not take a lock");

extern "C" void SetStopFlag(int /*signal*/) {
    // The handler may come between a call of the system and the look at its error.
    const int error = errno;
    // Only what a signal handler may do: atomic variables and `write`.
    StopFlag& stop = *flagToSet.load();
    if (!stop.Set()) {
        const int stream = PlaceOfMessages() == MessagePlace::StandardError ? STDERR_FILENO : STDOUT_FILENO;
        if (IsStatusShown()) {
            static_cast<void>(::write(stream, ClearLine.data(), ClearLine.size()));
        }
        static_cast<void>(::write(stream, StopMessage.data(), StopMessage.size()));
    }
    errno = error;
}

// A file opened later must not become standard output because that was closed when we were started.
void OpenClosedStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
            static_cast<void>(::open("/dev/null", O_RDWR)); // takes the lowest free number: this one
        }
    }
}

unsigned ProcessorsOfThisThread() {
    cpu_set_t processors;
    if (::sched_getaffinity(0, sizeof processors, &processors) == 0) {
        return static_cast<unsigned>(CPU_COUNT(&processors));
    }
    return std::thread::hardware_concurrency(); // more processors than the set has room for
}

// "QUOTA PERIOD", both in microseconds, or "max PERIOD": the processors' worth of time, rounded up.
unsigned ProcessorsOfQuota(const std::string& text) {
    std::uint64_t quota = 0;
    std::uint64_t period = 0;
    const char* const end = text.data() + text.size();
    // "max" is no number: the group has no quota.
    const auto [behind, error] = std::from_chars(text.data(), end, quota);
    // What is not understood sets no limit.
    if (error != std::errc() || behind == end || std::from_chars(behind + 1, end, period).ec != std::errc() ||
        period == 0) {
        return std::numeric_limits<unsigned>::max();
    }
    return static_cast<unsigned>(std::min<std::uint64_t>((quota + period - 1) / period, 1U << 16U));
}

// The tightest processor quota of our control group (version 2) and those around it.
unsigned ProcessorsOfControlGroup() {
    constexpr std::string_view Root = "/sys/fs/cgroup";
    unsigned fewest = std::numeric_limits<unsigned>::max();
    try {
        const std::string groups = ReadWholeFile("/proc/self/cgroup"); // "0::/GROUP", among lines of version 1
        const std::size_t line = groups.find("0::/");
        if (line == std::string::npos) {
            return fewest;
        }
        // At the slash: the path of the group follows.
        const std::size_t begin = line + 3;
        std::string group = groups.substr(begin, groups.find('\n', begin) - begin);
        while (!group.empty()) {
            const std::string quota = std::string(Root).append(group).append("/cpu.max");
            // The root of the tree has no such file, and neither have groups without the controller.
            if (PathExists(quota)) {
                fewest = std::min(fewest, ProcessorsOfQuota(ReadWholeFile(quota)));
            }
            group.resize(group.size() == 1 ? 0 : std::max<std::size_t>(group.rfind('/'), 1));
        }
    } catch (const std::exception&) {
        return fewest; // no quota that we could know of
    }
    return fewest;
}

} // namespace

void InstallInterruptHandler(StopFlag& stop) {
    // First, before anything else opens a file.
    OpenClosedStandardStreams();
    flagToSet.store(&stop);

    struct sigaction action {};

    // No second signal in the middle of the handler.
    ::sigfillset(&action.sa_mask);
    // Not SA_RESTART: a call that waits, for a writer or a reader of a pipe, is to come back and look at the flag.
    action.sa_handler = &SetStopFlag;
    // All that a terminal, a shell or a system that shuts down sends to ask for an end.
    for (const int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP}) {
        struct sigaction before {};

        // Who started us may want us to outlive the terminal.
        const bool isIgnored =
            signal == SIGHUP && ::sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN;
        if (!isIgnored) {
            ::sigaction(signal, &action, nullptr);
        }
    }
    action.sa_handler = SIG_IGN;
    // A reader that goes away shows as an error of the write, which is dealt with there.
    ::sigaction(SIGPIPE, &action, nullptr);
}

std::string WriteToStream(StandardStream stream, std::string_view bytes) noexcept {
    return WriteAll(stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO, bytes) ? std::string()
                                                                                             : SystemReason(errno);
}

std::optional<unsigned> TerminalColumns(StandardStream stream) noexcept {
    constexpr unsigned Usual = 80; // of a terminal that doesn't know its width
    const int descriptor = stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
    const char* const terminal = std::getenv("TERM");
    if (::isatty(descriptor) != 1 || terminal == nullptr || std::string_view(terminal) == "dumb") {
        return std::nullopt;
    }
    winsize size{};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : Usual;
}

bool ShowsColours() {
    if (const std::optional<bool> asked = ColoursAskedFor()) {
        return *asked;
    }
    return TerminalColumns(StandardStream::Output).has_value();
}

std::size_t ReadFromStandardInput(std::span<char> target) {
    // A signal may come just before the wait and end nothing: the flag is looked at again after this long.
    constexpr int MillisecondsBetweenLooks = 100;
    while (!ProcessStopFlag().IsSet()) {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        if (::poll(&input, 1, MillisecondsBetweenLooks) <= 0) { // nothing yet, or a signal: look at the flag again
            continue;
        }
        const ::ssize_t count = ::read(STDIN_FILENO, target.data(), target.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR && errno != EAGAIN) {
            throw FileException("standard input", SystemReason(errno));
        }
    }
    return 0;
}

unsigned AvailableProcessors() noexcept {
    // In a container, the quota is often far below the number of processors that can be seen.
    return std::max(1U, std::min(ProcessorsOfThisThread(), ProcessorsOfControlGroup()));
}

} // namespace Orvanta
