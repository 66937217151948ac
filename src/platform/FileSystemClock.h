#pragma once

#include "platform/FileStamp.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace Orvanta {

/// The clock by which the file system of a folder stamps its files, which need not be this machine's. Any thread may
/// ask.
class FileSystemClock {
public:
    /// Makes a file in `folder`, looks at it and removes it.
    /// \throws FileException when that is not possible
    explicit FileSystemClock(const std::string& folder);

    /// Whether what the stamp tells of was certainly there before `moment`, and anything written after it would have
    /// another stamp. No clock that is set back meanwhile, and no coarse one, makes it true in error.
    [[nodiscard]] bool IsOlder(const FileStamp& stamp, std::chrono::steady_clock::time_point moment) const;

    /// Whether what the stamp tells of may have happened since this object was made.
    [[nodiscard]] bool IsSinceStart(const FileStamp& stamp) const noexcept { return stamp.Newest() >= fileTime_; }

private:
    std::int64_t fileTime_;
    std::chrono::steady_clock::time_point time_;
    std::chrono::nanoseconds offset_; // of the system's clock to the steady one
};

} // namespace Orvanta
