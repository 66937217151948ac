#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace Orvanta {

/// What the file system tells of a file without reading it. A content that is written anew has another stamp, unless it
/// is as long and the two are written within one tick of the file system's clock.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds; the epoch is the system's own
    std::int64_t changed = 0;  ///< of anything about the file, its times included; 0 where the file system has none

    auto operator<=>(const FileStamp&) const = default;

    /// The later of both times.
    [[nodiscard]] std::int64_t Newest() const noexcept { return std::max(modified, changed); }
};

/// The stamp of the file at `path`, links followed; absent when there is nothing, or a folder or a device.
[[nodiscard]] std::optional<FileStamp> StampOf(const std::string& path);

} // namespace Orvanta
