#pragma once

#include <cstddef>
#include <cstdint>

namespace Orvanta {

/// Which file of a history's PathTable it is. A type of its own, so that nobody takes a file for one of its versions.
enum class FileNumber : std::uint32_t {};

/// Which version of all files, as some unit saw one: a place in the table of versions.
enum class VersionNumber : std::uint32_t {};

/// The place in the table that the number counts.
template <typename Number>
[[nodiscard]] constexpr std::size_t PlaceOf(Number number) noexcept {
    return static_cast<std::size_t>(number);
}

} // namespace Orvanta
