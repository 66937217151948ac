#include "render/ReportDifference.h"

#include "render/Finding.h"
#include "suppress/LineHash.h"

namespace OrvlogConverter {

bool EarlierFindings::Write(const ReportMessage& message) {
    return IsAboutCode(message) && findings_.emplace(MakeSuppressEntry(message, CurrentBaseVersion), false).second;
}

bool EarlierFindings::MarkSeen(const ReportMessage& message) {
    const auto found = findings_.find(MakeSuppressEntry(message, CurrentBaseVersion));
    if (found == findings_.end()) {
        return false;
    }
    seen_ += found->second ? 0U : 1U;
    found->second = true;
    return true;
}

bool NewFindingFilter::Accept(const ReportMessage& message) {
    return !IsAboutCode(message) || !earlier_.MarkSeen(message);
}

} // namespace OrvlogConverter
