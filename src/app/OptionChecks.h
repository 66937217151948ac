#pragma once

#include "app/AnalyzeOptions.h"

namespace Orvanta {

/// Sees that the file of `--stats` is one, and not the report.
/// \throws ZelmException
void RequireUsableStats(const AnalyzeOptions& options);

/// Checks what the options say before any work: files that must exist, options that exclude each other, and words that
/// mean nothing.
/// \throws ZelmException for the first fault found
void ValidateAnalyzeOptions(const AnalyzeOptions& options);

} // namespace Orvanta
