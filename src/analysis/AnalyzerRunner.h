#pragma once

#include "analysis/PassProgress.h"
#include "analysis/Progress.h"
#include "analysis/RunPass.h"
#include "analysis/RunPlaces.h"
#include "analysis/UnitPlanner.h"
#include "analysis/UnitResult.h"
#include "platform/Exceptions.h"
#include "settings/RunSettings.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <span>

namespace Orvanta {

/// There is no compile command left to run. Only the entry catches it.
class NoCompilationCommandsToRun : public ZelmException {
public:
    NoCompilationCommandsToRun() : ZelmException("No compilation units were found.") {}
};

/// One queued unit.
struct AnalysisTask {
    const CompileCommand* command = nullptr;
    IntermodularAnalysisMode mode = IntermodularAnalysisMode::None;
    std::size_t unit = 0;             ///< position among the run's units
    const UnitWork* work = nullptr;   ///< not null
    PassProgress* progress = nullptr; ///< not null
};

/// Analyzes the units of a run.
///
/// A unit goes through three places, each of which knows one thing. `UnitPlanner` decides: its plan is a plain record,
/// made without a core. `UnitRun` executes a plan, a straight list of steps for each kind of work. The runner knows of
/// many units: which are queued, on how many threads, and when a pass ends. So a way to analyze is a work and its
/// steps, and not a question that the steps of all the others ask as well; and what prints or repeats a unit's run
/// needs its plan only.
///
/// A failure travels as an exception up to `UnitRun::Run`, where it becomes the unit's result; only a core that can't
/// be started at all passes on, and ends the run.
class AnalyzerRunner {
public:
    /// All must outlive the runner.
    AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, const RunPlaces& places, Log& log,
                   AnalyzerProgress& progress, const StopFlag& stop);

    /// Does its work with one unit. What goes wrong with it is its result. Any number of threads may call it at once.
    /// \throws CoreUnusableException
    [[nodiscard]] UnitResult Run(const AnalysisTask& task);

    /// Goes through the units with up to `threads` workers, does with each what `pass` says, hands the results to its
    /// receiver and returns the CombinedResult of what that makes of them. After a stop, units that need no run are
    /// handed over all the same. \throws NoCompilationCommandsToRun for an empty list, ZelmException when the core
    /// can't be started at all
    int RunParallel(std::span<const CompileCommand* const> commands, unsigned threads, const RunPass& pass);

    /// Lets the core link what was collected of these units, in ".Orvanta"; after a stop, in part.
    /// \throws ProcessException when the core fails, ZelmException "can't find output directory", "Couldn't create
    /// path: " and the path, or when a file can't be written
    void RunMerge(std::span<const CompileCommand* const> commands);

private:
    void RunTask(const AnalysisTask& task, ResultReceiver& receiver);
    [[nodiscard]] std::optional<UnitResult> SettledResult(const CompileCommand& command, UnitAction action) const;
    [[nodiscard]] bool ShouldEnd() const noexcept;

    const RunSettings& settings_;
    const RunPlaces& places_;
    Log& log_;
    AnalyzerProgress& progress_;
    const StopFlag& stop_;
    UnitPlanner planner_;
    std::atomic<bool> coreIsUnusable_ = false;
};

/// Makes the folder in which the core links, empty of what it has linked before: before the first unit is collected, so
/// that a missing folder doesn't cost the collecting.
/// \throws ZelmException like RunMerge
void PrepareMerge(const RunPlaces& places);

} // namespace Orvanta
