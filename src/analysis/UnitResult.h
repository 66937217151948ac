#pragma once

#include "analysis/AnalyzerStatus.h"
#include "analysis/CoreTallies.h"
#include "history/UnitCost.h"
#include "platform/Fingerprint.h"
#include "report/ReportMessage.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// What the run of one unit left behind.
struct UnitResult {
    AnalyzerStatus status = AnalyzerStatus::Analyzed;
    std::string reason = {};       ///< of a failure
    bool isInSystemFolder = false; ///< why it was excluded
    bool importsModules = false;   ///< what those export is not in its text
    CoreTallies tallies = {};      ///< what the core says of the whole run
    bool runsAgain = false;        ///< it ran out of memory beside others: this result does not count
    std::string fragmentPath = {}; ///< the core's findings; empty when it was not run
    std::vector<OrvlogConverter::ReportMessage> ownFindings = {}; ///< of the driver itself
    std::optional<Fingerprint> text = {};                         ///< of the preprocessed one, where it is asked for
    UnitCost cost = {};                                           ///< of all children that were run for it
};

} // namespace Orvanta
