#pragma once

#include "analysis/UnitResult.h"
#include "report/DuplicateFilter.h"
#include "report/ReportOutputs.h"

#include <array>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// How the units of a run ended, and what they found.
struct RunOutcome {
    std::vector<AnalyzerStatus> statuses;            ///< by unit
    std::map<std::size_t, std::string> failures;     ///< by unit: why it failed
    std::array<std::size_t, 4> findingsByLevel = {}; ///< findings in the report; [0] counts those without a level
    std::optional<std::size_t> hiddenFindings = {};  ///< by a suppression base; empty when there was none
};

/// Puts the findings of the units into the report in input order, whatever order the units end in, and makes them
/// readable there as soon as their turn has come. A unit that waits for a slower one keeps its findings on disk.
class ReportCommitter {
public:
    /// `chain` leads to `output`; findings go in there. Both must outlive the committer.
    ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output, OrvlogConverter::IOutput& chain);

    /// The output itself is the chain.
    ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output)
        : ReportCommitter(units, output, output) {}

    /// Takes the result of a unit, once per unit, and commits every unit whose turn has come. Any thread may call it.
    /// Findings that can't be read, or a report that can't be written, make the unit a failed one.
    void Commit(std::size_t unit, UnitResult result);

    /// What became of the units so far. Only when no thread is in Commit.
    [[nodiscard]] const RunOutcome& Outcome() const noexcept { return outcome_; }

private:
    // All need mutex_ held, which the first argument proves. Order is the purpose of this lock: it covers the reading
    // of the fragments and the writing of the report.
    using Locked = const std::lock_guard<std::mutex>&;
    void CommitReady(Locked);
    void CommitUnit(Locked, std::size_t unit, UnitResult& result);
    void PassOnFragment(Locked, UnitResult& result);
    void PassOn(Locked, const OrvlogConverter::ReportMessage& message);

    std::mutex mutex_;
    OrvlogConverter::ReportOutput& output_;        // guarded by mutex_
    OrvlogConverter::DuplicateFilter chain_;       // guarded by mutex_
    std::map<std::size_t, UnitResult> waiting_;    // guarded by mutex_
    std::size_t next_ = 0;                         // guarded by mutex_
    std::array<std::size_t, 4> unitFindings_ = {}; // guarded by mutex_; of the unit being committed
    RunOutcome outcome_;                           // guarded by mutex_
};

} // namespace Orvanta
