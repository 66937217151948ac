#pragma once

#include "analysis/AnalyzerStatus.h"
#include "report/ReportMessage.h"

#include <string>
#include <vector>

namespace Orvanta {

/// What the run of one unit left behind.
struct UnitResult {
    AnalyzerStatus status = AnalyzerStatus::Analyzed;
    std::string reason; ///< of a failure, in one line
    std::string
        fragmentPath; ///< the file with the core's findings, ours to remove; empty when the core was not started
    std::vector<OrvlogConverter::ReportMessage> ownFindings = {}; ///< of the driver itself
};

} // namespace Orvanta
