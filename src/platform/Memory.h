#pragma once

#include <cstdint>

namespace Orvanta {

/// How many bytes this process and its children may take now without being refused or killed: what the machine has to
/// spare, or less where a control group or a job allows less. 0 when the system doesn't tell.
[[nodiscard]] std::uint64_t GrantedMemory() noexcept;

} // namespace Orvanta
