#include "analysis/RunPass.h"

#include <algorithm>

namespace Orvanta {

IntermodularAnalysisMode ModeOf(const UnitWork& work) noexcept {
    if (std::holds_alternative<Work::Collect>(work) || std::holds_alternative<Work::CollectAndKeep>(work)) {
        return IntermodularAnalysisMode::FirstRun;
    }
    return std::holds_alternative<Work::Perform>(work) ? IntermodularAnalysisMode::SecondRun
                                                       : IntermodularAnalysisMode::None;
}

unsigned ProgressStageOf(const UnitWork& work) noexcept {
    if (std::holds_alternative<Work::ListDependencies>(work)) {
        return ProgressStage::ParsingIncludes;
    }
    return ModeOf(work) == IntermodularAnalysisMode::FirstRun ? ProgressStage::Parsing : ProgressStage::Analyzing;
}

bool RunsNone(std::span<const UnitAction> actions) {
    return std::none_of(actions.begin(), actions.end(), [](UnitAction action) { return action == UnitAction::Run; });
}

} // namespace Orvanta
