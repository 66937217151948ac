#pragma once

#include "report/IOutput.h"
#include "suppress/SuppressEntry.h"

#include <cstddef>
#include <unordered_map>

namespace OrvlogConverter {

/// The findings of an earlier report, by the entries that a base would hold, and whether they are still there. The
/// report is written into it as into any output.
class EarlierFindings : public IOutput {
public:
    /// Remembers a finding of the earlier report. False for notices and for what it has already.
    bool Write(const ReportMessage& message) override;

    /// Whether the earlier report has the finding, which from now on counts as still there.
    bool MarkSeen(const ReportMessage& message);

    /// The findings of the earlier report that were not seen.
    [[nodiscard]] std::size_t CountGone() const noexcept { return findings_.size() - seen_; }

private:
    std::unordered_map<SuppressEntry, bool, SuppressEntryHash> findings_; // the value: seen
    std::size_t seen_ = 0;
};

/// Drops what an earlier report has too.
class NewFindingFilter : public IFilter {
public:
    /// `earlier` outlives the filter.
    NewFindingFilter(IOutput* next, EarlierFindings& earlier) : IFilter(next), earlier_(earlier) {}

    /// Marks the finding as still there on the way, when the earlier report has it.
    bool Accept(const ReportMessage& message) override;

private:
    EarlierFindings& earlier_;
};

} // namespace OrvlogConverter
