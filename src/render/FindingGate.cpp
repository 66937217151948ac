#include "render/FindingGate.h"

#include "render/Finding.h"

#include <vector>

namespace OrvlogConverter {

FindingGate::FindingGate(std::string_view specification) {
    const std::vector<AnalyzerLevels> analyzers = ParseAnalyzerSpecification(specification);
    // The parser gives an empty list for "all", which names no analyzer.
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
    // A unit that failed has a code of the analyzer, but is no finding in code: naming a group does not ask for it.
    const bool isOfAnalyzer = ClassifyCode(message.code) != AnalyzerType::Unknown && message.code != FailedUnitCode;
    // The parser takes levels outside of 1 to 3 as they are, so they are refused here.
    return isOfAnalyzer && LevelRank(message.level) < LevelRanks - 1 && levels_.Passes(message.code, message.level);
}

} // namespace OrvlogConverter
