#pragma once

#include <string_view>

namespace Orvanta {

/// Whether a file belongs to a compiler or to the system, told by its path alone: for compilers whose line markers
/// don't say so, and for libraries that stand in a system folder but are named by -I. A folder in which the unit's own
/// source lies is not a system folder for that unit. Both paths are absolute.
[[nodiscard]] bool IsInSystemFolder(std::string_view path, std::string_view sourcePath);

} // namespace Orvanta
