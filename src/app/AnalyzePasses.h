#pragma once

#include "analysis/FileChanges.h"
#include "analysis/RunPass.h"
#include "app/AnalyzeInput.h"
#include "app/RunEnding.h"
#include "app/RunHistory.h"
#include "history/RunJournal.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

class AnalyzerRunner;
class RunMonitor;
class ShownFindings;
struct RunPlaces;

/// What a run has of its user: where it shows what it finds and says, and how it is told to stop.
struct UserSide {
    ShownFindings& shown;
    Log& log;
    const StopFlag& stop;
};

/// The passes of one run over its units.
///
/// Whatever the options ask for is a list of passes: what is done with each unit, with which units, and where the
/// results go. The list is made before the first of them begins. Each selects its units when its turn has come, since
/// that may depend on what the pass before has learned; a pass that finds nothing to do takes no share of the progress.
/// To add a way to analyze is to add a list, not a branch in each step of the others.
class AnalyzePasses {
public:
    /// All outlive the object.
    AnalyzePasses(const AnalyzeInput& input, const RunPlaces& places, AnalyzerRunner& runner, RunMonitor& monitor,
                  const UserSide& user);

    /// Goes through the passes until the last has ended or the user stops the run, and keeps what came of it.
    /// \throws ZelmException for what ends a run early; then, too, the ending holds what became of the units before
    void Run();

    /// What came of the passes so far; whole when `Run` has ended, by whatever way.
    [[nodiscard]] const RunEnding& Ending() const noexcept { return ending_; }

private:
    using Actions = std::vector<UnitAction>;

    /// One entry of the list.
    struct Pass {
        UnitWork work;
        std::function<std::optional<Actions>()> select; ///< announces the pass; absent: there is nothing to do
        void (AnalyzePasses::*run)(const Pass& pass, const Actions& actions, PercentRange percents);
        const char* failure = ""; ///< stands before why a unit failed in it
    };

    // Runs the passes in order; a stop ends it in front of the next one. Each has an equal share of what is left.
    void GoThrough(const std::vector<Pass>& passes);
    // Puts together how each unit ended, and saves what later runs need. Returns whether all could be written.
    bool Keep();
    // What of the run a later one can go on with: nothing when it has come to its end.
    void EndJournal();
    // The list that the options ask for; starts nothing.
    [[nodiscard]] std::vector<Pass> ListPasses();
    // Collecting and performing; the linking stands before the second selects its units.
    [[nodiscard]] std::vector<Pass> ListIntermodularPasses();
    // The one pass of a stage that is a run of its own; linking is a pass over no unit.
    [[nodiscard]] std::vector<Pass> ListStagePasses();
    // Absent when the dependencies of all units are known.
    [[nodiscard]] std::optional<Actions> SelectForListing();
    // Absent when the report needs no run: the ending then says why.
    [[nodiscard]] std::optional<Actions> SelectForAnalysis();
    // A pass whose results are for those that follow, or for later runs.
    void Learn(const Pass& pass, const Actions& actions, PercentRange percents);
    // The same, when none follows: its outcome is the run's.
    void LearnOnly(const Pass& pass, const Actions& actions, PercentRange percents);
    // A pass whose results make up the report, which is opened here and whole at the end.
    void Report(const Pass& pass, const Actions& actions, PercentRange percents);
    // A pass whose results a later run links.
    void Collect(const Pass& pass, const Actions& actions, PercentRange percents);
    // Has the core link what all shards have collected.
    void Link();
    // Of the units of the run, those that could not be collected by an earlier one.
    [[nodiscard]] std::map<std::size_t, CollectFailure> CollectFailures() const;
    // The same, of units that carry their findings over to later runs.
    void ReportByHistory(const Pass& pass, const Actions& actions, PercentRange percents);
    // Runs the pass; `outcome` is set also when it ends in an error.
    void Go(const Pass& pass, const Actions& actions, PercentRange percents, ResultReceiver& receiver,
            RunOutcome& outcome);
    // Reads the report that stays as it was, for the end of the run and its gate.
    void ShowKeptReport();

    const AnalyzeInput& input_;
    const RunPlaces& places_;
    AnalyzerRunner& runner_;
    RunMonitor& monitor_;
    UserSide user_;
    std::vector<const CompileCommand*> units_;
    std::optional<RunHistory> history_;
    std::unique_ptr<RunJournal> journal_; // of an ordinary run; null: it can't be resumed
    std::optional<FileChanges> changes_;  // of an intermodular analysis
    std::vector<std::pair<const char*, RunOutcome>> learned_;
    bool writesWholeReport_ = false; // one that later runs may leave as it is
    RunEnding ending_;
};

} // namespace Orvanta
