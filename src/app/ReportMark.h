#pragma once

#include "history/HistoryFolder.h"
#include "platform/Fingerprint.h"

#include <string>

namespace Orvanta {

/// A file in ".Orvanta" that says what the report on disk is: which units it covers, how their findings came into it,
/// and which file with which content it is. A report that somebody has changed, filtered in place or put there is
/// another one; so is one that a killed run has left, since the mark is written when the report is whole.
class ReportMark {
public:
    /// `tell` takes a line when the mark can't be written.
    ReportMark(const std::string& orvantaFolder, TellUser tell);

    /// Whether the report on disk is the one that was marked with these `contents`. What can't be read is not. Reads
    /// the report when its stamp alone can't tell, and then marks it anew, so that the next run needn't.
    [[nodiscard]] bool Matches(const std::string& reportPath, const Fingerprint& contents) const;

    /// Marks the report on disk. Costs the next run time when it can't, and is told.
    void Write(const std::string& reportPath, const Fingerprint& contents) const;

private:
    std::string folder_;
    std::string path_;
    TellUser tell_;
};

} // namespace Orvanta
