#pragma once

#include "analysis/AnalyzerStatus.h"
#include "platform/Exceptions.h"
#include "platform/Process.h"
#include "report/ReportMessage.h"

#include <string>

namespace Orvanta {

/// A unit has failed, and how. The run of the unit makes it the unit's result.
class UnitFailure : public ZelmException {
public:
    /// `status` is one of those that IsFailure takes for a failure; `reason` is for the list of failures.
    UnitFailure(AnalyzerStatus status, std::string reason) : ZelmException(std::move(reason)), status_(status) {}

    /// The step that failed.
    [[nodiscard]] AnalyzerStatus Status() const noexcept { return status_; }

private:
    AnalyzerStatus status_;
};

/// The finding that stands in the report for a unit that could not be preprocessed.
[[nodiscard]] OrvlogConverter::ReportMessage NotAnalyzedMessage(std::string sourcePath);

/// Why a core failed, for the list of failures: what it said, else its code.
[[nodiscard]] std::string CoreFailureReason(const ProcessReturnCodeException& error);

} // namespace Orvanta
