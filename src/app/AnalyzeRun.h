#pragma once

#include "analysis/CoreLocator.h"
#include "analysis/Progress.h"
#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "app/RunLocks.h"
#include "app/ShownFindings.h"
#include "cache/ResultCache.h"
#include "compilers/CompilerRegistry.h"
#include "history/UnitCost.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

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
struct RunOutcome;

/// One run of `analyze`, from the checked options to the exit code.
class AnalyzeRun {
public:
    /// `options` outlive the run.
    explicit AnalyzeRun(const AnalyzeOptions& options);

    /// \throws ZelmRcException when the run's code isn't 0
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    // Reads what there is to do. Starts compilers where they have to be identified, but no core; touches no report.
    void ReadInputs();
    // Leaves the units of the shard, where the run is to have a part of them, and says which of the whole they are.
    void ChooseUnits();
    // Sees to it that no output takes the place of a source: the first moment at which these are known.
    void RequireOutputs() const;
    // Opens the file of --dump-log, which gets all that was said so far.
    void OpenLog();
    // From the locks to the end that the user sees. Returns the run's code; an error of the passes leaves it as thrown.
    [[nodiscard]] int Analyze();
    // The locks of all that this run writes to and a later one reads. Waits a moment for another run.
    [[nodiscard]] RunLocks TakeLocks();
    // Where the run's files go; makes the folder in which the user wants to keep them.
    [[nodiscard]] RunPlaces MakePlaces(const std::string& corePath, const std::string& temporaryFolder);
    // The folder into which a stage writes that is a run of its own; empty for none.
    [[nodiscard]] std::string StageFolderToLock() const;
    // Reads what the stages before have left and puts this one's files where those after it look for them. Throws when
    // something is missing, or is not of this run.
    void EnterStage(RunPlaces& places);
    // The core that the options name, else the one that is found; the log tells of the bundled one.
    [[nodiscard]] CoreLocation FindCore();
    // What the core says of itself. Throws when the bundled one can analyze nothing, with what is missing.
    [[nodiscard]] std::string VersionOf(const CoreLocation& core, const std::string& folder);
    // The exit code: of what became of the units first, then of the gate.
    [[nodiscard]] int ResultOf(const RunEnding& ending) const;
    // Tells what came of the run, once, whatever it was.
    void End(const RunEnding& ending, const std::vector<UnitCost>& costs = {});

    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    AnalyzeInput input_;
    const CompilerRegistry registry_;
    std::string outputFolder_; // of the report, or the current one
    Log log_;
    ShownFindings shown_;
    StdOutProgress progress_;
    std::unique_ptr<ResultCache> cache_; // null: there is none
};

} // namespace Orvanta
