#pragma once

#include "report/AnalyzerType.h"
#include "report/IOutput.h"

#include <set>
#include <string>
#include <vector>

namespace OrvlogConverter {

/// What a `MessageFilter` lets pass. Empty members restrict nothing.
struct MessageFilterSettings {
    enum class FalseAlarms { Drop, Keep };

    std::set<std::string, std::less<>> disabledCodes = {};
    std::set<std::string, std::less<>> excludedWords = {}; ///< whole words of the source line
    std::vector<AnalyzerLevels> analyzers = {};
    std::vector<std::string> excludedPaths = {}; ///< fragments of the file's path; an empty one is in every path
    FalseAlarms falseAlarms = FalseAlarms::Drop;
};

/// Drops messages by code, mark, words of their line, analyzer and level, and path.
class MessageFilter : public IFilter {
public:
    MessageFilter(IOutput* next, MessageFilterSettings settings);
    /// Whether the message passes all restrictions.
    bool Accept(const ReportMessage& message) override;

private:
    MessageFilterSettings settings_;
    LevelTable levels_;
};

} // namespace OrvlogConverter
