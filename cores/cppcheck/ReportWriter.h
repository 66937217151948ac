#pragma once

#include "cppcheck/CppcheckOutput.h"
#include "cppcheck/MarkedText.h"
#include "report/ReportMessage.h"

#include <span>
#include <vector>

namespace Orvanta {

/// The findings in a user's own files as report messages, in order of file, line and Cppcheck's identifier, each once.
/// `files` are those of the unit's cut text, by whose aliases Cppcheck names places; any other name stands for the
/// unit's source.
[[nodiscard]] std::vector<OrvlogConverter::ReportMessage> MakeReportMessages(std::span<const CppcheckFinding> findings,
                                                                             std::span<const MarkedFile> files);

/// Makes sure that Cppcheck has looked at the unit: it tells by a finding when it could not read the text.
/// \throws ZelmException with the place and the reason
void ThrowIfNotAnalyzed(std::span<const CppcheckFinding> findings, std::span<const MarkedFile> files);

} // namespace Orvanta
