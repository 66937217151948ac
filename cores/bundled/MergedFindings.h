#pragma once

#include "bundled/MarkedText.h"
#include "report/ReportMessage.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// Replaces the merged file at `path` in one step.
/// \throws ZelmException with the path and the system's reason
void WriteMergedFindings(const std::string& path, std::span<const OrvlogConverter::ReportMessage> findings);

/// The findings of a merged file whose primary place lies in one of the user's `files`.
/// \throws ZelmException naming `path` when it can't be read or is damaged
[[nodiscard]] std::vector<OrvlogConverter::ReportMessage> ReadMergedFindings(const std::string& path,
                                                                             std::span<const MarkedFile> files);

} // namespace Orvanta
