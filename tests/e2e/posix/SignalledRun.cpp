#include "e2e/posix/SignalledRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvanta {

namespace {

constexpr const char* OutputName = "run.out";
constexpr const char* ErrorsName = "run.err";

std::vector<char*> Pointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

SignalledRun::SignalledRun(const Sandbox& sandbox, const Arguments& options) : sandbox_(sandbox) {
    sandbox.WriteDatabase();
    Arguments command = Sandbox::AnalyzeCommand(options);
    std::vector<std::string> variables = EnvironmentBlock(sandbox.DriverEnvironment()).Entries();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, sandbox.Path().c_str());
    constexpr int Flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, sandbox.Path(OutputName).c_str(), Flags, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, sandbox.Path(ErrorsName).c_str(), Flags, 0644);
    const int failure = posix_spawn(&process_, command.front().c_str(), &actions, nullptr, Pointers(command).data(),
                                    Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("can't start " + command.front());
    }
}

SignalledRun::~SignalledRun() {
    if (!hasEnded_) {
        Signal(SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

void SignalledRun::Signal(int number) const {
    kill(process_, number);
}

std::string SignalledRun::OutputSoFar() const {
    return sandbox_.Read(OutputName);
}

bool SignalledRun::HasEnded() {
    int status = 0;
    if (!hasEnded_ && waitpid(process_, &status, WNOHANG) == process_) {
        hasEnded_ = true;
        exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return hasEnded_;
}

RunResult SignalledRun::Wait() {
    EXPECT_TRUE(HoldsSoon([this] { return HasEnded(); })) << "the driver did not end; it said " << OutputSoFar();
    return {exitCode_, OutputSoFar(), sandbox_.Read(ErrorsName)};
}

} // namespace Orvanta
