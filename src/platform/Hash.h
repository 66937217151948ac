#pragma once

#include <cstdint>
#include <string_view>

namespace Orvanta {

/// The 64-bit FNV-1a hash of the bytes in order. `seed` continues an earlier hash, or starts a differing one.
[[nodiscard]] constexpr std::uint64_t Fnv1a(std::string_view bytes, std::uint64_t seed = 0xcbf29ce484222325U) noexcept {
    std::uint64_t hash = seed;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
    }
    return hash;
}

} // namespace Orvanta
