#pragma once

#include "analysis/RunOutcome.h"
#include "analysis/UnitResult.h"
#include "report/DuplicateFilter.h"
#include "report/ReportOutputs.h"

#include <array>
#include <cstddef>
#include <map>
#include <mutex>
#include <string_view>

namespace Orvanta {

/// Puts the findings of the units into the report in input order, whatever order the units end in, and makes them
/// readable there as soon as their turn has come; those of units that were carried over at the latest with the end of
/// the output. A unit that waits for a slower one keeps its findings on disk.
class ReportCommitter : public ResultReceiver {
public:
    /// `chain` leads to `output`; findings go in there. Both must outlive the committer.
    ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output, OrvlogConverter::IOutput& chain);

    /// The output itself is the chain.
    ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output)
        : ReportCommitter(units, output, output) {}

    /// Commits every unit whose turn has come. Findings that can't be read, or a report that can't be written, make the
    /// unit a failed one.
    void Commit(std::size_t unit, UnitResult result) override;

    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return outcome_; }

private:
    // All need mutex_ held, which the first argument proves. Order is the purpose of this lock: it covers the reading
    // of the fragments and the writing of the report.
    using Locked = const std::lock_guard<std::mutex>&;
    void CommitReady(Locked);
    void CommitUnit(Locked, std::size_t unit, UnitResult& result);
    void PassOnFragment(Locked, UnitResult& result);
    void PassOnKept(Locked, UnitResult& result);
    void PassOnLine(Locked, std::string_view line, std::size_t number, UnitResult& result);
    void PassOn(Locked, const OrvlogConverter::ReportMessage& message);

    std::mutex mutex_;
    OrvlogConverter::ReportOutput& output_;        // guarded by mutex_
    OrvlogConverter::DuplicateFilter chain_;       // guarded by mutex_
    std::map<std::size_t, UnitResult> waiting_;    // guarded by mutex_
    std::size_t next_ = 0;                         // guarded by mutex_
    std::array<std::size_t, 4> unitFindings_ = {}; // guarded by mutex_; of the unit being committed
    std::size_t carriedSinceCommit_ = 0;           // guarded by mutex_
    RunOutcome outcome_;                           // guarded by mutex_
};

} // namespace Orvanta
