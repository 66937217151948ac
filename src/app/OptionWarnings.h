#pragma once

#include "app/AnalyzeOptions.h"

#include <string>
#include <vector>

namespace Orvanta {

/// Warnings about values that are taken but mean nothing to us, each a line that names the option: before any work, and
/// after the options were found valid.
[[nodiscard]] std::vector<std::string> WarningsAbout(const AnalyzeOptions& options);

} // namespace Orvanta
