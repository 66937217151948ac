#pragma once

#include "analysis/Progress.h"
#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "app/RunLocks.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <chrono>
#include <string>

namespace Orvanta {

struct RunEnding;

/// One run of `analyze`, from the checked options to the exit code. It reads what there is to do, goes through the
/// passes that the options ask for, and ends in one way whatever they came to: with the list of failures, the summary
/// and the code. An error that ends the passes early is told after that, so that what was found until then is counted.
class AnalyzeRun {
public:
    /// `options` outlive the run.
    explicit AnalyzeRun(const AnalyzeOptions& options);

    /// \throws ZelmRcException when the run's code isn't 0
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    void ReadInputs();
    [[nodiscard]] int Analyze();
    [[nodiscard]] RunLocks TakeLocks() const;
    [[nodiscard]] RunPlaces MakePlaces(const std::string& temporaryFolder);
    [[nodiscard]] std::string CorePath();
    void End(const RunEnding& ending);

    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    const CompilerRegistry registry_;
    AnalyzeInput input_;
    std::string outputFolder_; // of the report, or the current one
    Log log_;
    StdOutProgress progress_;
};

} // namespace Orvanta
