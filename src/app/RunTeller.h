#pragma once

#include "analysis/RunOutcome.h"
#include "analysis/ToldInput.h"
#include "app/AnalyzeOptions.h"
#include "app/ShownFindings.h"
#include "history/UnitCost.h"
#include "platform/Log.h"

#include <span>

namespace Orvanta {

/// Tells at the end of a run what came of it, in parts that each run puts together in its own way.
class RunTeller {
public:
    /// All outlive the object; `shown` has watched the findings when they are to be shown.
    RunTeller(const AnalyzeOptions& options, const ToldInput& input, const ShownFindings& shown, Log& log)
        : options_(options), input_(input), shown_(shown), log_(log) {}

    /// Tells what failed and why: many with one reason once.
    void TellFailures(const RunOutcome& outcome) const;

    /// Tells what else there is to know of the units: that nothing was analyzed, and what units have in common.
    void TellNotes(const RunOutcome& outcome) const;

    /// Says which files took longest: where somebody looks on, and in what is kept for a closer look.
    void TellTimes(std::span<const UnitCost> costs) const;

    /// Shows the worst findings, and how many of them stop the build.
    void ShowFindings() const;

private:
    const AnalyzeOptions& options_;
    const ToldInput& input_;
    const ShownFindings& shown_;
    Log& log_;
};

/// The exit code that an outcome stands for: what became of the units and invocations first, then the gate.
[[nodiscard]] int RunResult(const RunOutcome& outcome, const ToldInput& input, const ShownFindings& shown);

} // namespace Orvanta
