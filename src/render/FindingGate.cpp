#include "render/FindingGate.h"

#include "render/Finding.h"

#include <vector>

namespace OrvlogConverter {

FindingGate::FindingGate(std::string_view specification) {
    const std::vector<AnalyzerLevels> analyzers = ParseAnalyzerSpecification(specification);
    takesAll_ = analyzers.empty();
    levels_ = LevelTable(analyzers);
}

bool FindingGate::Matches(const ReportMessage& message) const noexcept {
    if (!IsAboutCode(message)) {
        return false;
    }
    if (takesAll_) {
        return true;
    }
    const bool isOfAnalyzer = ClassifyCode(message.code) != AnalyzerType::Unknown && message.code != FailedUnitCode;
    return isOfAnalyzer && LevelRank(message.level) < LevelRanks - 1 && levels_.Passes(message.code, message.level);
}

} // namespace OrvlogConverter
