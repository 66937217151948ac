#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// The folders where an installed core analyzer may stand on this system, in the order in which they are looked at.
[[nodiscard]] std::vector<std::string> InstalledCoreFolders();

} // namespace Orvanta
