#pragma once

#include "analysis/CommitListener.h"
#include "analysis/RunOutcome.h"
#include "analysis/UnitResult.h"
#include "report/DuplicateFilter.h"
#include "report/ReportOutputs.h"

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace Orvanta {

/// Puts the findings of the units into the report in input order, whatever order the units end in, and makes them
/// readable there as soon as their turn has come. A unit that waits for a slower one keeps its findings on disk, also
/// one that was carried over: what an earlier run found is fetched when its turn has come.
class ReportCommitter : public ResultReceiver {
public:
    /// Gives what an earlier run found in a unit that is carried over, in the core's own lines. May throw.
    using KeptFindings = std::function<std::string(std::size_t unit)>;

    /// `chain` leads to `output`; findings go in there. Both must outlive the committer.
    ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output, OrvlogConverter::IOutput& chain,
                    KeptFindings keptFindings = {});

    /// The output itself is the chain.
    explicit ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output, KeptFindings keptFindings = {})
        : ReportCommitter(units, output, output, std::move(keptFindings)) {}

    /// Who hears of each unit; null for nobody. Before the first commit; outlives the committer.
    void TellTo(CommitListener* listener) noexcept { listener_ = listener; }

    /// Commits every unit whose turn has come. Findings that can't be read, or a report that can't be written, make the
    /// unit a failed one.
    void Commit(std::size_t unit, UnitResult result) override;

    /// Puts on disk what was passed on so far: before a wait, so that a kill meanwhile loses none of it.
    void Flush() override;

    /// A unit that was never committed is a stopped one.
    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return outcome_; }

private:
    // All need mutex_ held, which the first argument proves. Order is the purpose of this lock: it covers the reading
    // of the fragments and the writing of the report.
    using Locked = const std::lock_guard<std::mutex>&;
    // Passes the findings of the unit whose turn it is, writes down how it ended, and goes on to the next turn.
    void CommitUnit(Locked, std::size_t unit, UnitResult& result);
    // Puts on disk what was passed on since the last time, and counts it as reported.
    void Publish(Locked);
    // Passes on what the core wrote for this run, and removes that file.
    void PassOnFragment(Locked, UnitResult& result);
    // Passes on findings of an earlier run.
    void PassOnLines(Locked, std::string_view lines, UnitResult& result);
    // Passes on one finding; `number`, from 1, is for the message about a line that can't be read.
    void PassOnLine(Locked, std::string_view line, std::size_t number, UnitResult& result);
    // Puts a finding into the chain, and counts it when the chain took it.
    void PassOn(Locked, const OrvlogConverter::ReportMessage& message);

    std::mutex mutex_;
    OrvlogConverter::ReportOutput& output_;           // guarded by mutex_
    OrvlogConverter::DuplicateFilter chain_;          // guarded by mutex_
    KeptFindings keptFindings_;                       // guarded by mutex_
    CommitListener* listener_ = nullptr;              // called under mutex_, which keeps the order
    std::map<std::size_t, UnitResult> waiting_;       // guarded by mutex_
    std::size_t next_ = 0;                            // guarded by mutex_
    std::size_t published_ = 0;                       // guarded by mutex_; units whose findings are on disk
    std::array<std::size_t, 4> findingsWaiting_ = {}; // guarded by mutex_; not on disk yet, by level
    std::size_t bytesWaiting_ = 0;                    // guarded by mutex_; of carried findings not on disk yet
    RunOutcome outcome_;                              // guarded by mutex_
};

} // namespace Orvanta
