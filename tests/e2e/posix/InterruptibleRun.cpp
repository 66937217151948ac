#include "e2e/support/InterruptibleRun.h"

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

// Its outputs go to files in the sandbox, so that they can be read while it goes on.
struct InterruptibleRun::State {
    const Sandbox& sandbox;
    int process = -1;
    int exitCode = -1;
    bool hasEnded = false;

    bool HasEnded();
};

InterruptibleRun::InterruptibleRun(const Sandbox& sandbox, const Arguments& options)
    : state_(std::make_unique<State>(State{sandbox})) {
    sandbox.WriteDatabase();
    Arguments command = Sandbox::AnalyzeCommand(options);
    std::vector<std::string> variables = EnvironmentBlock(sandbox.DriverEnvironment()).Entries();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, sandbox.Path().c_str());
    constexpr int Flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, sandbox.Path(OutputName).c_str(), Flags, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, sandbox.Path(ErrorsName).c_str(), Flags, 0644);
    const int failure = posix_spawn(&state_->process, command.front().c_str(), &actions, nullptr,
                                    Pointers(command).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("can't start " + command.front());
    }
}

InterruptibleRun::~InterruptibleRun() {
    if (!state_->hasEnded) {
        kill(state_->process, SIGKILL);
        waitpid(state_->process, nullptr, 0);
    }
}

void InterruptibleRun::Interrupt() {
    kill(state_->process, SIGINT);
}

std::string InterruptibleRun::OutputSoFar() {
    return state_->sandbox.Read(OutputName);
}

bool InterruptibleRun::State::HasEnded() {
    int status = 0;
    if (!hasEnded && waitpid(process, &status, WNOHANG) == process) {
        hasEnded = true;
        exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return hasEnded;
}

RunResult InterruptibleRun::Wait() {
    EXPECT_TRUE(HoldsSoon([this] { return state_->HasEnded(); }))
        << "the driver did not end; it said " << OutputSoFar();
    return {state_->exitCode, OutputSoFar(), state_->sandbox.Read(ErrorsName)};
}

} // namespace Orvanta
