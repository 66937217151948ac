#pragma once

#include "analysis/RunOutcome.h"
#include "history/RunJournal.h"

#include <cstddef>

namespace Orvanta {

/// Writes down in a journal what units find before their results go on to the next receiver: whatever comes then, they
/// need not run again. Any thread may commit.
class JournalWriter : public ResultReceiver {
public:
    /// Both outlive the writer.
    JournalWriter(RunJournal& journal, ResultReceiver& next) : journal_(journal), next_(next) {}

    void Commit(std::size_t unit, UnitResult result) override;

    void Flush() override { next_.Flush(); }

    [[nodiscard]] const RunOutcome& Outcome() const noexcept override { return next_.Outcome(); }

private:
    RunJournal& journal_;
    ResultReceiver& next_;
};

} // namespace Orvanta
