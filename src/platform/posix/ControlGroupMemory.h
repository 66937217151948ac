#pragma once

#include <cstdint>
#include <string>

namespace Orvanta {

/// GrantedMemory by the files of the system below `root`, which is empty for the system's own.
/// \throws what the reading of a file throws
[[nodiscard]] std::uint64_t GrantedMemoryBelow(const std::string& root);

} // namespace Orvanta
