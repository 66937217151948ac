#pragma once

#include "analysis/Progress.h"
#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "app/RunLocks.h"
#include "app/ShownFindings.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <chrono>
#include <string>

// The program: what the user asks for, and what the user is told.
//
// `Entry` picks the subcommand, each of which has a file of its own: the parser's declarations, the checks that need no
// work, and the work. `TopLevel` is the only place that turns errors into texts and codes. All below throws.
//
// A run of `analyze` has three parts. AnalyzeRun reads what there is to do and takes the locks; AnalyzePasses is the
// list of passes over the units that the options ask for; and End tells what came of it. There is one end, whatever
// the passes came to, so that no way to analyze can forget the list of failures or the summary. An error that ends the
// passes early is told after it.
//
// The order at the start is a promise. Everything that can be wrong without a core is found before one is started: the
// options, a broken base, the input, another run. Then the core is started for the first time, to ask for its version,
// and only then is the report opened: a run that can't begin leaves the report of the one before as it was.

namespace Orvanta {

struct RunEnding;

/// One run of `analyze`, from the checked options to the exit code.
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
    [[nodiscard]] RunLocks TakeLocks();
    [[nodiscard]] RunPlaces MakePlaces(const std::string& temporaryFolder);
    [[nodiscard]] std::string CorePath();
    [[nodiscard]] int ResultOf(const RunEnding& ending) const;
    void End(const RunEnding& ending);
    void ShowFindings();

    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    const CompilerRegistry registry_;
    AnalyzeInput input_;
    std::string outputFolder_; // of the report, or the current one
    Log log_;
    ShownFindings shown_;
    StdOutProgress progress_;
};

} // namespace Orvanta
