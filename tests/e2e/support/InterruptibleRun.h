#pragma once

#include "e2e/support/Sandbox.h"

#include <memory>

namespace Orvanta {

/// A run of `analyze` with the fake core that a test interrupts as a user at a terminal does. The destructor kills it.
class InterruptibleRun {
public:
    InterruptibleRun(const Sandbox& sandbox, const Arguments& options);
    ~InterruptibleRun();
    InterruptibleRun(const InterruptibleRun&) = delete;
    InterruptibleRun& operator=(const InterruptibleRun&) = delete;

    /// Presses Ctrl+C.
    void Interrupt();

    [[nodiscard]] std::string OutputSoFar();

    /// Waits for its end, for at most 20 seconds: a run that takes longer fails the test.
    RunResult Wait();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Orvanta
