#include "platform/Process.h"

#include "platform/Files.h"
#include "support/TestFolder.h"
#include "unit/platform/StartError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Orvanta {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds LongTime{60'000}; // no correct run comes near it

// A shell script as a child, with its outputs.
struct Script {
    explicit Script(const std::string& text, const std::string& directory = {})
        : process({"/bin/sh", "-c", text}, directory, OwnEnvironmentBlock(),
                  MakeRedirectToStringProcessor(standardOutput), MakeRedirectToStringProcessor(standardError)) {}

    // Receives the child's first line, a process id.
    pid_t ReadPid() {
        while (standardOutput.find('\n') == std::string::npos && !process.WaitForChange(LongTime)) {
        }
        return std::stoi(standardOutput);
    }

    std::string standardOutput;
    std::string standardError;
    Process process;
};

// The same as a launcher, of which the command's words are its own.
std::unique_ptr<Process> Launch(const std::string& script, const Arguments& command, std::string& output) {
    const Arguments launcher = {"/bin/sh", "-c", script, "launcher"};
    const StartConditions conditions = {"", OwnEnvironmentBlock(), ProcessGroup::Own, launcher};
    auto process = std::make_unique<Process>(command, conditions, MakeRedirectToStringProcessor(output),
                                             MakeRedirectToStringProcessor(output));
    while (output.find('\n') == std::string::npos && !process->WaitForChange(LongTime)) {
    }
    return process;
}

std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

// Waits for the end of a process that need not be our child.
bool Ends(pid_t pid) {
    const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
    if (descriptor < 0) {
        return true;
    }
    pollfd end = {.fd = descriptor, .events = POLLIN, .revents = 0};
    const bool hasEnded = ::poll(&end, 1, static_cast<int>(LongTime.count())) == 1;
    ::close(descriptor);
    return hasEnded;
}

struct ExitCase {
    std::string script;
    int code;
};

const ExitCase ExitCases[] = {
    {"exit 0", 0},          {"exit 255", 255},      {"kill -KILL $$", 137},
    {"kill -SEGV $$", 139}, {"kill -PIPE $$", 141}, // we ignore it
    {"kill -TERM $$", 143},                         // we block it
};

TEST(Child, EndsWithItsCodeOrItsSignalAndStartsWithFreshSignals) {
    const auto handler = std::signal(SIGPIPE, SIG_IGN);
    sigset_t terminate;
    sigset_t before;
    ::sigemptyset(&terminate);
    ::sigaddset(&terminate, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &terminate, &before);
    for (const ExitCase& row : ExitCases) {
        Script script(row.script);
        EXPECT_EQ(script.process.get_exit_status(), row.code) << row.script;
        int again = -1;
        EXPECT_TRUE(script.process.try_get_exit_status(again));
        EXPECT_EQ(again, row.code) << "a code once taken stays";
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGPIPE, handler);
}

TEST(Child, SeesNothingButItsEnvironment) {
    std::string output;
    Process variables({"/usr/bin/env"}, "", EnvironmentBlock({{"B", ""}, {"A", "x=y z"}}),
                      MakeRedirectToStringProcessor(output), nullptr);
    EXPECT_EQ(variables.get_exit_status(), 0);
    EXPECT_EQ(output, "A=x=y z\nB=\n");
}

TEST(Child, LeavesNoDescriptors) {
    EXPECT_EQ(Script("exit 0").process.get_exit_status(), 0);
    const std::ptrdiff_t before = OpenDescriptors();
    for (int child = 0; child < 3; ++child) {
        Script script("echo out; echo err >&2");
        EXPECT_EQ(script.process.get_exit_status(), 0);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Child, IsLookedUpAlongThePathOfItsOwnEnvironment) {
    const TestFolder folder;
    const std::string program = folder.Write("bin/tool", "#!/bin/sh\necho found\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    for (const std::string& path : {folder / "bin", std::string("bin")}) {
        std::string output;
        Process process({"tool"}, folder.Path(), EnvironmentBlock({{"PATH", "/nowhere:" + path}}),
                        MakeRedirectToStringProcessor(output), nullptr);
        EXPECT_EQ(process.get_exit_status(), 0);
        EXPECT_EQ(output, "found\n") << path;
    }
}

// Leaves room for so many more descriptors while it lives.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t room) {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const int lowestFree = ::dup(STDIN_FILENO);
        ::close(lowestFree);
        const rlimit tight = {.rlim_cur = static_cast<rlim_t>(lowestFree) + room, .rlim_max = before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &tight);
    }

    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit before_{};
};

using Cause = ProcessStartException::Cause;

TEST(ChildThatCannotStart, SaysThatThePosixWay) {
    const TestFolder folder;
    const std::string text = folder.Write("text", "no program\n");
    const std::string broken = folder.Write("broken", "no program\n");
    std::filesystem::permissions(broken, std::filesystem::perms::owner_all);
    EXPECT_EQ(TryToStart({text}), StartError("\"" + text + "\": Permission denied", Cause::Program));
    EXPECT_EQ(TryToStart({broken}), StartError("\"" + broken + "\": Exec format error", Cause::Program));
}

TEST(ChildThatCannotStart, LeavesNoDescriptorWhenTheyRunOut) {
    EXPECT_EQ(Script("exit 0").process.get_exit_status(), 0);
    const std::ptrdiff_t before = OpenDescriptors();
    for (rlim_t room = 0; room < 4; ++room) {
        const DescriptorLimit limit(room);
        EXPECT_EQ(TryToStart({"/bin/true"}), StartError("\"/bin/true\": Too many open files", Cause::Resources));
    }
    EXPECT_EQ(TryToStart({"/bin/true"}, "/nowhere").second, Cause::Directory);
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Kill, WithoutForceLetsTheChildSayGoodbyeAndLeavesNothingOfItsTree) {
    // The grandchild is ready, and deaf, when it tells its id.
    Script script("trap 'echo bye; exit 9' TERM; sh -c 'trap \"\" TERM; echo $$; sleep 1000 & wait; wait' & wait");
    const pid_t grandchild = script.ReadPid();
    script.process.kill();
    EXPECT_EQ(script.process.get_exit_status(), 9);
    EXPECT_THAT(script.standardOutput, testing::EndsWith("\nbye\n"));
    EXPECT_TRUE(Ends(grandchild));
}

TEST(RunAndReadOf, AShellCommandIsItsStandardOutput) {
    EXPECT_EQ(RunAndRead("printf 'a\\000b\\nc'; exit 3"), std::string("a\0b\nc", 5));
    EXPECT_EQ(RunAndRead("exit 1"), "");
}

TEST(Child, IsMeasuredWithAllThatItStarted) {
    Script child("dd if=/dev/zero of=/dev/null bs=67108864 count=2; exit 3");
    EXPECT_EQ(child.process.Cost().processor.count(), 0) << "not known before its end";
    EXPECT_EQ(child.process.get_exit_status(), 3);
    const ProcessCost cost = child.process.Cost();
    EXPECT_GE(cost.peakMemory, 67'108'864U);
    EXPECT_GT(cost.processor.count(), 0);
    EXPECT_GT(cost.wall.count(), 0);
    EXPECT_EQ(child.process.Cost(), cost) << "measured once";
}

TEST(LauncherOfAProcess, IsAskedAloneAndItsGroupIsKilledOnlyBehindIt) {
    std::string output;
    // Its own child ignores what it is asked, and would be seen to end if it were asked as well.
    const std::string script = "trap 'echo asked for $1; exit 3' TERM; "
                               "(trap 'echo child was asked' TERM; echo started; while :; do sleep 0.01; done) & wait";
    auto process = Launch(script, {"word"}, output);
    process->kill(true);
    EXPECT_EQ(process->get_exit_status(), 3);
    EXPECT_EQ(output, "started\nasked for word\n");
}

TEST(LauncherOfAProcess, IsKilledWhenItDoesNotEnd) {
    std::string output;
    auto process = Launch("trap '' TERM; sleep 1000 & echo $!; wait", {"word"}, output);
    const pid_t below = std::stoi(output);
    const auto begin = std::chrono::steady_clock::now();
    process.reset();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, LongestFarewell);
    EXPECT_TRUE(Ends(below));
}

} // namespace
} // namespace Orvanta
