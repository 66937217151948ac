#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace Orvanta {

/// What the file system tells of a file without reading it. A content that is written anew has another stamp, unless it
/// is as long and the two are written into one file within one tick of the file system's clock. Which file it is
/// belongs to the stamp: a link that is turned elsewhere, or a folder put in the place of another, can lead to a file
/// of equal size and times.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds; the epoch is the system's own
    std::int64_t changed = 0;  ///< of anything about the file, its times included; 0 where the file system has none

    std::uint64_t volume = 0; ///< the device that holds the file
    std::uint64_t index = 0;  ///< the file's number there, which no other file has at the same time

    auto operator<=>(const FileStamp&) const = default;

    /// Whether both tell of one file, whatever it holds.
    [[nodiscard]] bool IsOfSameFile(const FileStamp& other) const noexcept {
        return volume == other.volume && index == other.index;
    }

    /// The later of both times.
    [[nodiscard]] std::int64_t Newest() const noexcept { return std::max(modified, changed); }
};

/// What the system says of a path. That it can't tell (no right to look, a broken disk, a circle of links) is an answer
/// of its own, as in PathAnswer: taken for absence, what a unit was made of would be a file that is not there.
struct StampAnswer {
    std::optional<FileStamp> stamp; ///< absent when there is nothing, or a folder or a device
    bool isTold = true;             ///< false: it can't be told, and `stamp` is absent

    bool operator==(const StampAnswer&) const = default;
};

/// Asks for the stamp of the file at `path`, links followed.
[[nodiscard]] StampAnswer AskForStamp(const std::string& path);

/// The stamp alone, for those to whom no file and no answer are the same doubt.
[[nodiscard]] inline std::optional<FileStamp> StampOf(const std::string& path) {
    return AskForStamp(path).stamp;
}

} // namespace Orvanta
