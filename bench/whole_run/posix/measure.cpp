// measure COMMAND...: runs a command with its output thrown away and prints one line:
//   exit code, wall seconds, CPU seconds of the command and all that it waited for, CPU seconds of the command's own
//   process, peak memory in kilobytes of the largest of these processes
// It is small itself: a process starts out with the peak memory of the one that it was started from.
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double Seconds(const timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double Now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return Seconds(time);
}

/// The CPU time of an ended process that has not been waited for: its children's is not in it.
double OwnCpu(pid_t process) {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        return -1;
    }
    return Seconds(time);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: measure COMMAND...\n", stderr);
        return 2;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const double start = Now();
    if (posix_spawnp(&child, argv[1], &actions, nullptr, argv + 1, environ) != 0) {
        std::perror(argv[1]);
        return 2;
    }
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    const double wall = Now() - start;
    const double own = OwnCpu(child);
    rusage usage{};
    int status = 0;
    wait4(child, &status, 0, &usage);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::printf("%d %.6f %.6f %.6f %ld\n", code, wall, Seconds(usage.ru_utime) + Seconds(usage.ru_stime), own,
                usage.ru_maxrss);
    return 0;
}
