#pragma once

#include "e2e/support/Sandbox.h"

namespace Orvanta {

/// A run of `analyze` with the fake core to which a test sends signals, as a terminal does. Its outputs go to files in
/// the sandbox, so that they can be read while it goes on. The destructor kills it.
class SignalledRun {
public:
    SignalledRun(const Sandbox& sandbox, const Arguments& options);
    ~SignalledRun();
    SignalledRun(const SignalledRun&) = delete;
    SignalledRun& operator=(const SignalledRun&) = delete;

    void Signal(int number) const;

    [[nodiscard]] std::string OutputSoFar() const;

    /// Waits for its end, for at most 20 seconds: a run that takes longer fails the test.
    RunResult Wait();

private:
    bool HasEnded();

    const Sandbox& sandbox_;
    int process_ = -1;
    int exitCode_ = -1;
    bool hasEnded_ = false;
};

} // namespace Orvanta
