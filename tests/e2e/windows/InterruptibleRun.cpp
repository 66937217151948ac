#include "e2e/support/InterruptibleRun.h"

#include "platform/Files.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

constexpr std::chrono::seconds LongestEnd{20};

// The file that tells the helper on the console to press the keys.
std::string PressFile(int press) {
    return "ctrl-c-" + std::to_string(press);
}

Arguments CommandOnConsole(const Sandbox& sandbox, const Arguments& options) {
    for (int press = 1; sandbox.Exists(PressFile(press)); ++press) { // of an earlier run in this sandbox
        RemoveFile(sandbox.Path(PressFile(press)));
    }
    Arguments command = {ORVANTA_CONSOLE_RUN, sandbox.Path("ctrl-c-")};
    const Arguments analyze = Sandbox::AnalyzeCommand(options);
    command.insert(command.end(), analyze.begin(), analyze.end());
    sandbox.WriteDatabase();
    return command;
}

} // namespace

// The driver runs on a console of its own, where a helper presses the keys when a file tells it to.
struct InterruptibleRun::State {
    State(const Sandbox& runSandbox, const Arguments& options)
        : sandbox(runSandbox),
          process(CommandOnConsole(sandbox, options), sandbox.Path(), EnvironmentBlock(sandbox.DriverEnvironment()),
                  MakeRedirectToStringProcessor(output), MakeRedirectToStringProcessor(errors)) {}

    const Sandbox& sandbox;
    std::string output;
    std::string errors;
    int presses = 0;
    Process process;
};

InterruptibleRun::InterruptibleRun(const Sandbox& sandbox, const Arguments& options)
    : state_(std::make_unique<State>(sandbox, options)) {}

InterruptibleRun::~InterruptibleRun() = default;

void InterruptibleRun::Interrupt() {
    state_->sandbox.Write(PressFile(++state_->presses), "");
}

std::string InterruptibleRun::OutputSoFar() {
    state_->process.WaitForChange(std::chrono::milliseconds(0));
    return state_->output;
}

RunResult InterruptibleRun::Wait() {
    const StopFlag neverStops;
    const WaitResult end = WaitWithTimeout(state_->process, LongestEnd, PollInterval, neverStops);
    EXPECT_TRUE(end.finished) << "the driver did not end; it said " << state_->output;
    return {end.exitCode, state_->output, state_->errors};
}

} // namespace Orvanta
