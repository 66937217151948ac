#include "render/ReportDifference.h"

#include "render/Finding.h"
#include "suppress/LineHash.h"

namespace OrvlogConverter {

bool EarlierFindings::Write(const ReportMessage& message) {
    // By the entry of a base and not by the line, so that an edit above a finding does not make it a new one.
    return IsAboutCode(message) && findings_.emplace(MakeSuppressEntry(message, CurrentBaseVersion), false).second;
}

bool EarlierFindings::MarkSeen(const ReportMessage& message) {
    const auto found = findings_.find(MakeSuppressEntry(message, CurrentBaseVersion));
    if (found == findings_.end()) {
        return false;
    }
    // Several findings of a report may have one entry: it is counted once.
    seen_ += found->second ? 0U : 1U;
    found->second = true;
    return true;
}

bool NewFindingFilter::Accept(const ReportMessage& message) {
    // A notice is about this report, whatever an earlier one said.
    return !IsAboutCode(message) || !earlier_.MarkSeen(message);
}

} // namespace OrvlogConverter
