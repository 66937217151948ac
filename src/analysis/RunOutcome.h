#pragma once

#include "analysis/AnalyzerStatus.h"
#include "analysis/UnitResult.h"

#include <array>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Orvanta {

/// How the units of a run ended, and what they found.
struct RunOutcome {
    std::vector<AnalyzerStatus> statuses;            ///< by unit
    std::map<std::size_t, std::string> failures;     ///< by unit: why it failed
    std::array<std::size_t, 4> findingsByLevel = {}; ///< findings in the report; [0] counts those without a level
    std::optional<std::size_t> hiddenFindings = {};  ///< by a suppression base; empty when there was none
    std::size_t inSystemFolders = 0;                 ///< units that were excluded because they lie there
    std::set<std::size_t> importingModules = {};     ///< units whose text lacks what the modules export
    CoreTallies tallies = {};                        ///< what the core said of the run as a whole
    bool isReportKept = false;                       ///< the report stands as it was: its findings were not counted

    /// Takes over how a unit ended, and why.
    void Settle(std::size_t unit, UnitResult& result);

    /// Makes the unit a failed one after all. One that has failed already or was excluded stays so.
    void Fail(std::size_t unit, const std::string& reason, AnalyzerStatus status = AnalyzerStatus::Failed);
};

/// The exit code that the outcome of a run stands for: 0 when every unit that was not left out was analyzed, 1 when one
/// failed or none was analyzed, 130 after a stop.
[[nodiscard]] int CombinedResult(const RunOutcome& outcome) noexcept;

/// The code of a run that the user stopped.
inline constexpr int InterruptedExitCode = 130;

/// Takes the results of the units of a run.
class ResultReceiver {
public:
    virtual ~ResultReceiver() = default;

    /// Takes the result of a unit, once per unit. Any thread may call it.
    virtual void Commit(std::size_t unit, UnitResult result) = 0;

    /// The next results will take their time: what the results so far have led to is to be on disk. Any thread may call
    /// it.
    virtual void Flush() {}

    /// What became of the units so far. Only when no thread is in Commit.
    [[nodiscard]] virtual const RunOutcome& Outcome() const noexcept = 0;
};

/// Takes how the units ended, and drops what they found.
class OutcomeReceiver : public ResultReceiver {
public:
    /// `units` is how many the run has; each counts as stopped until its result comes in.
    explicit OutcomeReceiver(std::size_t units) { outcome_.statuses.assign(units, AnalyzerStatus::Stopped); }

    /// Removes the file of the unit's findings.
    void Commit(std::size_t unit, UnitResult result) override;

    /// Holds no findings.
    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return outcome_; }

private:
    std::mutex mutex_;
    RunOutcome outcome_; // guarded by mutex_
};

} // namespace Orvanta
