#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// Starts a program that shares this one's process group (job) and outputs, and lets it go.
void StartSibling(const std::vector<std::string>& command);

} // namespace Orvanta
