#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The files that a unit is made of, in the order in which the core printed them: one a line, behind a mark; lines
/// without the mark don't count. Relative paths are taken from `directory`; a line that holds only the mark gives an
/// empty path.
[[nodiscard]] std::vector<std::string> ReadDependencyLines(std::string_view output, std::string_view directory);

} // namespace Orvanta
