#pragma once

#include "platform/Environment.h"

#include <string>
#include <vector>

namespace Orvanta {

/// A line for the user's shell (sh, or the command interpreter of Windows) that runs the words in the folder, with
/// these variables set on top. For people to paste: this program starts nothing through a shell.
[[nodiscard]] std::string ShellLine(const std::string& folder, const Environment& variables,
                                    const std::vector<std::string>& words);

} // namespace Orvanta
