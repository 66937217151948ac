#pragma once

#include "history/HistoryFile.h"
#include "history/HistoryRecord.h"
#include "history/Numbers.h"
#include "history/VersionTable.h"

#include <cstddef>
#include <span>
#include <vector>

namespace Orvanta {

/// What of a history is worth saving, with the numbers that it has in the file. What no unit names any more is left
/// behind, so that neither the tables nor the looks at files grow for ever.
///
/// Only the numbers are made here. The rows are read where they stand when they are written: to copy them would double
/// what is the better part of a run's memory. So nothing of both may change as long as this lives.
class HistoryExtract {
public:
    HistoryExtract(const HistoryRecord& record, const VersionTable& files);

    /// The units, by their places in the record.
    [[nodiscard]] std::span<const std::size_t> Units() const noexcept { return units_; }

    [[nodiscard]] HistoryCounts Counts() const;

    /// Adds the rows of all tables.
    void WriteTo(HistoryFileWriter& writer) const;

private:
    /// Gives the version a number, and its file, unless they have one.
    void Number(VersionNumber version);

    const HistoryRecord& record_;
    const VersionTable& files_;
    std::vector<std::size_t> units_;
    // In the order in which the lists name them, so that the next run meets them one behind the other.
    std::vector<VersionNumber> versions_;    // by new number
    std::vector<FileNumber> paths_;          // by new number
    std::vector<VersionNumber> newVersions_; // by old number
    std::vector<FileNumber> newPaths_;       // by old number
};

} // namespace Orvanta
