#pragma once

#include "analysis/FileChanges.h"
#include "analysis/RunPass.h"
#include "app/AnalyzeInput.h"
#include "app/RunEnding.h"
#include "app/RunHistory.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

class AnalyzerRunner;
class ShownFindings;
struct RunPlaces;

/// The passes of one run over its units.
///
/// Whatever the options ask for is a list of passes: what is done with each unit, with which units, and where the
/// results go. The list is made before the first of them begins. Each selects its units when its turn has come, since
/// that may depend on what the pass before has learned; a pass that finds nothing to do takes no share of the progress.
/// To add a way to analyze is to add a list, not a branch in each step of the others.
class AnalyzePasses {
public:
    /// All outlive the object.
    AnalyzePasses(const AnalyzeInput& input, const RunPlaces& places, AnalyzerRunner& runner, ShownFindings& shown,
                  Log& log, const StopFlag& stop);

    /// Goes through the passes until the last has ended or the user stops the run, and keeps what came of it.
    /// \throws ZelmException for what ends a run early; then, too, the ending holds what became of the units before
    void Run();

    [[nodiscard]] const RunEnding& Ending() const noexcept { return ending_; }

private:
    using Actions = std::vector<UnitAction>;

    struct Pass {
        UnitWork work;
        std::function<std::optional<Actions>()> select; ///< announces the pass; absent: there is nothing to do
        void (AnalyzePasses::*run)(const Pass& pass, const Actions& actions, PercentRange percents);
        const char* failure = ""; ///< stands before why a unit failed in it
    };

    void GoThrough(const std::vector<Pass>& passes);
    bool Keep();
    [[nodiscard]] std::vector<Pass> ListPasses();
    [[nodiscard]] std::vector<Pass> ListIntermodularPasses();
    [[nodiscard]] std::optional<Actions> SelectForListing();
    [[nodiscard]] std::optional<Actions> SelectForAnalysis();
    void Learn(const Pass& pass, const Actions& actions, PercentRange percents);
    void LearnOnly(const Pass& pass, const Actions& actions, PercentRange percents);
    void Report(const Pass& pass, const Actions& actions, PercentRange percents);
    void ReportByHistory(const Pass& pass, const Actions& actions, PercentRange percents);
    void Go(const RunPass& pass, RunOutcome& outcome);
    void ShowKeptReport();

    const AnalyzeInput& input_;
    const RunPlaces& places_;
    AnalyzerRunner& runner_;
    ShownFindings& shown_;
    Log& log_;
    const StopFlag& stop_;
    std::vector<const CompileCommand*> units_;
    std::optional<RunHistory> history_;
    std::optional<FileChanges> changes_; // of an intermodular analysis
    std::vector<std::pair<const char*, RunOutcome>> learned_;
    bool writesWholeReport_ = false; // one that later runs may leave as it is
    RunEnding ending_;
};

} // namespace Orvanta
