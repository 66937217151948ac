#include "platform/FileSystemClock.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

// How far the system's clock is ahead of the steady one. It falls when somebody sets the system's clock back.
nanoseconds Offset() {
    return system_clock::now().time_since_epoch() - steady_clock::now().time_since_epoch();
}

FileStamp StampOfNewFile(const std::string& folder) {
    const std::string path = JoinPath(folder, ".orvtmp-clock");
    RemoveFile(path); // whatever stands there: a pipe would hold us until somebody reads it
    OutputFile(path, OutputFile::Mode::Replace).Append("\n");
    // By its path, as every other file is looked at.
    const std::optional<FileStamp> stamp = StampOf(path);
    RemoveFile(path);
    if (!stamp) {
        throw FileException(path, "the file is gone as soon as it is made");
    }
    return *stamp;
}

// How late a clock may be read. One that counts less than a millisecond ticks with the system's timer; one that does
// not may count whole seconds, or two.
std::int64_t LongestTick(std::int64_t time) {
    constexpr std::int64_t Millisecond = 1'000'000;
    constexpr std::int64_t OfTimer = 100 * Millisecond;
    constexpr std::int64_t OfCoarseClock = 2000 * Millisecond;
    return time % Millisecond != 0 ? OfTimer : OfCoarseClock;
}

} // namespace

FileSystemClock::FileSystemClock(const std::string& folder)
    : fileTime_(StampOfNewFile(folder).Newest()), time_(steady_clock::now()), offset_(Offset()) {}

bool FileSystemClock::IsOlder(const FileStamp& stamp, steady_clock::time_point moment) const {
    // The two clocks are not read at one moment, so small differences prove nothing.
    constexpr std::chrono::milliseconds SmallestStep{20};
    if (Offset() < offset_ - SmallestStep) {
        return false; // set back: a file may be stamped with a time that has been before
    }
    // What the file system's clock showed at `moment`, as far as it can have run; a tick less, so that what is written
    // after `moment` can't get the same stamp.
    const std::int64_t time = stamp.Newest();
    return time < fileTime_ + nanoseconds(moment - time_).count() - LongestTick(time);
}

} // namespace Orvanta
