#pragma once

#include "analysis/RunOutcome.h"

#include <string>

namespace Orvanta {

/// What a run has come to: all that its end has to tell.
struct RunEnding {
    RunOutcome outcome;
    std::string reportPath;      ///< of the report that the run has written, or has left as whole; empty for none
    std::string summary;         ///< in place of the usual one, when not empty
    std::string lastLine;        ///< behind the summary, when not empty
    bool selectsNothing = false; ///< nothing of the list of source files belongs to the build
};

} // namespace Orvanta
