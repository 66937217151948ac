#pragma once

#include "platform/Process.h"
#include "report/ReportMessage.h"

#include <string>

namespace Orvanta {

/// The finding that stands in the report for a unit that could not be preprocessed.
[[nodiscard]] OrvlogConverter::ReportMessage NotAnalyzedMessage(std::string sourcePath);

/// Why a core failed, for the list of failures: its command and its code, then what it said.
[[nodiscard]] std::string CoreFailureReason(const ProcessReturnCodeException& error);

} // namespace Orvanta
