#pragma once

#include "analysis/AnalyzerStatus.h"
#include "analysis/MemoryPlan.h"
#include "analysis/Progress.h"

#include <cstddef>
#include <span>
#include <variant>
#include <vector>

namespace Orvanta {

class FileChanges;
class ResultReceiver;
class RunJournal;
class UnitEvents;
class UnitHistory;

/// What a run does with a unit.
enum class UnitAction {
    Run,
    CarryOver,     ///< reports what its last run found
    Exclude,       ///< the settings leave it out
    ExcludeSystem, ///< it lies in a system folder
    LeaveOut,      ///< it is not listed
};

/// What a pass does with each unit that runs. A work holds what it needs and nothing else, so that no step asks whether
/// there is a history, or which stage this is.
namespace Work {

/// Analyzes the unit.
struct Analyze {
    RunJournal* journal = nullptr; ///< of this run, which may go on with an earlier one; null: nothing is written down
};

/// Analyzes the unit, and the history keeps what it saw and found.
struct AnalyzeAndKeep {
    UnitHistory& history;
};

/// Lists the files that the unit is made of: the history keeps them, and nothing is analyzed.
struct ListDependencies {
    UnitHistory& history;
};

/// Collects what other units need to know of this one.
struct Collect {
    bool leavesText = true; ///< for the stage that performs in the same run
};

/// The same, and the history keeps the files that the unit is made of.
struct CollectAndKeep {
    UnitHistory& history;
};

/// Analyzes the unit with what was collected. A unit of which a file has changed since is preprocessed again.
struct Perform {
    FileChanges& changes; ///< since before the first unit was collected
};

/// Makes the preprocessed text and leaves it where the plan says; no core is started.
struct Preprocess {};

} // namespace Work

/// What a pass does, one of the works. Copies are cheap; what it refers to outlives the pass.
using UnitWork = std::variant<Work::Analyze, Work::AnalyzeAndKeep, Work::ListDependencies, Work::Collect,
                              Work::CollectAndKeep, Work::Perform, Work::Preprocess>;

/// The stage of an intermodular analysis that a work is; None for an ordinary run.
[[nodiscard]] IntermodularAnalysisMode ModeOf(const UnitWork& work) noexcept;

/// The index of the stage as progress counts them.
[[nodiscard]] unsigned ProgressStageOf(const UnitWork& work) noexcept;

/// One pass over the units of a run.
struct RunPass {
    UnitWork work;
    std::vector<UnitAction> actions; ///< by unit
    std::vector<MemoryNeed> needs;   ///< by unit
    PercentRange percents;
    ResultReceiver& receiver; ///< of what becomes of each unit
    UnitEvents& events;
};

/// Whether a pass with these actions runs no unit.
[[nodiscard]] bool RunsNone(std::span<const UnitAction> actions);

} // namespace Orvanta
