#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace Orvanta {

/// The bytes of an input as text.
inline std::string_view FuzzText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process, so that the fuzzer keeps the input, when something does not hold that always must.
inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace Orvanta
