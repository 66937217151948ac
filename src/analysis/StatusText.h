#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace Orvanta {

/// Where a pass of a run stands.
struct RunStatus {
    std::size_t finished = 0; ///< units
    std::size_t total = 0;
    std::size_t running = 0;
    std::optional<std::chrono::seconds> left = {}; ///< until the end of the pass
    std::string longestPath = {}; ///< of the unit that has been running longest; empty: none to be named
    std::chrono::seconds longestAge{0};
};

/// One line for a terminal, such as "[12/300] 2 running, 3:05 left | 0:12 src/a.cpp", of at most so many columns: what
/// doesn't fit goes from its end, of the path from its start.
[[nodiscard]] std::string StatusText(const RunStatus& status, std::size_t columns);

} // namespace Orvanta
