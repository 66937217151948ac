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
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

// How units are analyzed.
//
// A unit goes through three places, each of which knows one thing:
//
//     UnitPlanner     decides. A UnitPlan is a plain record: the compiler's model, the command as read, environments,
//                     the preprocessing command, what the core is told, whether the unit is left out. It is made
//                     without a core and without a report, so that whatever prints, checks or repeats the run of a
//                     unit has all it needs, and decides nothing a second time.
//     UnitRun         executes a plan. Each kind of work (Work::...) is one function that reads from top to bottom.
//     AnalyzerRunner  knows of many: which units are queued, on how many threads, when a pass ends.
//
// A pass is a work, what is done with each unit, its share of the progress, and who takes the results. The receiver
// puts them in input order, or only counts them; the runner need not know.
//
// An outcome is a value and a failure an exception, never both. A failure travels up to UnitRun::Run, where it becomes
// the unit's result; only that the core can't be started at all goes on from there, and ends the pass. A stop is an
// outcome: it ends a function by its value, and leaves no reason behind.
//
// Rejected: one list of steps for all works, each of which asks whether there is a history and which stage this is. It
// was shorter, and nobody could say what one kind of run does. A base class with a virtual function for each step: the
// works differ in which steps they have, not in how a step is done. A prober that asks compilers after a unit has been
// preprocessed, which spares the question for units that fail: then a plan would be no plan.

namespace Orvanta {

class ReplayBundles;
class UnitQueue;

/// There is no compile command left to run. Only the entry catches it.
class NoCompilationCommandsToRun : public ZelmException {
public:
    /// Its text is what the user reads.
    NoCompilationCommandsToRun() : ZelmException("No compilation units were found.") {}
};

/// A unit and its position among the run's units, by which it is known to all that hear of it.
struct PlacedCommand {
    const CompileCommand* command = nullptr;
    std::size_t unit = 0;
};

/// One queued unit.
struct AnalysisTask {
    const CompileCommand* command = nullptr;
    IntermodularAnalysisMode mode = IntermodularAnalysisMode::None;
    std::size_t unit = 0;             ///< its place
    const UnitWork* work = nullptr;   ///< not null
    PassProgress* progress = nullptr; ///< not null
    UnitEvents* events = nullptr;     ///< not null
};

/// Analyzes the units of a run.
class AnalyzerRunner {
public:
    /// All must outlive the runner.
    AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, const RunPlaces& places, Log& log,
                   AnalyzerProgress& progress, const StopFlag& stop);

    /// Who takes the bundles of units that fail; null for nobody. Before the first unit; must outlive the runner.
    void OfferTo(ReplayBundles* bundles) noexcept { bundles_ = bundles; }

    /// Does its work with one unit. Where `mayRunAgain` says so, one that runs out of memory is to run again. What goes
    /// wrong with it is its result. Any number of threads may call it at once. \throws CoreUnusableException
    [[nodiscard]] UnitResult Run(const AnalysisTask& task, const std::function<bool()>& mayRunAgain = {});

    /// Goes through the units in the order given, with up to `threads` workers, does with each what `pass` says, hands
    /// the results to its receiver and returns the CombinedResult of what that makes of them. After a stop, units that
    /// need no run are handed over all the same. \throws NoCompilationCommandsToRun for an empty list \throws
    /// CoreUnusableException \throws ZelmException when no thread can be started
    int RunParallel(std::span<const PlacedCommand> commands, unsigned threads, const RunPass& pass);

    /// Lets the core link what was collected of these units, in ".Orvanta"; after a stop, in part.
    /// \throws ProcessException when the core fails, ZelmException "can't find output directory", "Couldn't create
    /// path: " and the path, or when a file can't be written
    void RunMerge(std::span<const CompileCommand* const> commands);

private:
    // What a worker does with a queued unit: runs it, hands its result over, and counts it. Throws what ends the pass,
    // after which no unit begins.
    void RunTask(const AnalysisTask& task, ResultReceiver& receiver, UnitQueue& queue);
    // Runs the unit, and once more when it had too little memory beside others. The queue knows then that it has ended.
    [[nodiscard]] UnitResult RunWithMemory(const AnalysisTask& task, UnitQueue& queue);
    // What all children together may take; 0: no limit.
    [[nodiscard]] std::uint64_t MemoryBudget() const;
    // The result of a unit with which nothing is to be done; absent for one that is to run.
    [[nodiscard]] std::optional<UnitResult> SettledResult(const CompileCommand& command, UnitAction action) const;
    // Whether no further unit is to begin: the user stops the run, or no core can be started.
    [[nodiscard]] bool ShouldEnd() const noexcept;

    const RunSettings& settings_;
    const RunPlaces& places_;
    Log& log_;
    AnalyzerProgress& progress_;
    const StopFlag& stop_;
    UnitPlanner planner_;
    ReplayBundles* bundles_ = nullptr;
    std::atomic<bool> coreIsUnusable_ = false;
};

/// Makes the folder in which the core links, empty of what it has linked before: before the first unit is collected, so
/// that a missing folder doesn't cost the collecting.
/// \throws ZelmException like RunMerge
void PrepareMerge(const RunPlaces& places);

} // namespace Orvanta
