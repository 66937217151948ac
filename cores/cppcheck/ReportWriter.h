#pragma once

#include "cppcheck/CppcheckOutput.h"
#include "cppcheck/MarkedText.h"
#include "cppcheck/SystemTextCutter.h"
#include "report/ReportMessage.h"

#include <span>
#include <vector>

namespace Orvanta {

/// The findings in a user's own files as report messages, in order of file, line and Cppcheck's identifier, each once.
/// `files` are those of the unit, whose aliases Cppcheck names places by, its source first; any other name stands for
/// the source. `systemMacros` are those of its cut text.
[[nodiscard]] std::vector<OrvlogConverter::ReportMessage>
MakeReportMessages(std::span<const CppcheckFinding> findings, std::span<const MarkedFile> files,
                   std::span<const SystemMacroText> systemMacros);

/// Adds those of the `others` that say something new of a place. The order of the messages is kept.
void AddFindings(std::vector<OrvlogConverter::ReportMessage>& messages,
                 std::vector<OrvlogConverter::ReportMessage> others);

/// Makes sure that Cppcheck has looked at the unit: it tells by a finding when it could not read the text.
/// \throws ZelmException with the place and the reason
void ThrowIfNotAnalyzed(std::span<const CppcheckFinding> findings, std::span<const MarkedFile> files);

} // namespace Orvanta
