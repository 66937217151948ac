#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// Splits a command line, in UTF-8, with the system's own splitter; empty when it can't.
[[nodiscard]] std::vector<std::string> SplitByPlatform(const std::string& commandLine);

} // namespace Orvanta
