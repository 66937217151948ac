#include "app/StageReceivers.h"

#include "platform/Files.h"

#include <utility>

namespace Orvanta {

void CollectedResults::Commit(std::size_t unit, UnitResult result) {
    if (!result.fragmentPath.empty()) {
        RemoveFile(std::exchange(result.fragmentPath, ""));
    }
    result.ownFindings.clear();
    next_.Commit(unit, std::move(result));
}

void PerformedResults::Commit(std::size_t unit, UnitResult result) {
    const auto failure = failures_.find(unit);
    // A stopped one says that the run has not come to its end, and who was left out is not asked for.
    if (failure != failures_.end() && !IsFailure(result.status) && result.status != AnalyzerStatus::Excluded &&
        result.status != AnalyzerStatus::Stopped) {
        result.status = failure->second.status;
        result.reason = NotCollected + failure->second.reason;
    }
    next_.Commit(unit, std::move(result));
}

} // namespace Orvanta
