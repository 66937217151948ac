#include "platform/FileStamp.h"

#include "platform/posix/Descriptor.h"

#include <cerrno>

#include <sys/stat.h>

namespace Orvanta {

namespace {

// Since 1970; what 64 bits hold reaches to the year 2262.
std::int64_t Nanoseconds(const timespec& time) {
    constexpr std::int64_t PerSecond = 1'000'000'000;
    return std::int64_t{time.tv_sec} * PerSecond + time.tv_nsec;
}

} // namespace

StampAnswer AskForStamp(const std::string& path) {
    struct stat status {};

    // A text with a zero byte in it can't be a path; its beginning might be one.
    if (path.find('\0') != std::string::npos) {
        return {};
    }
    if (::stat(path.c_str(), &status) != 0) {
        return {std::nullopt, IsAbsence(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        return {};
    }
    return {FileStamp{static_cast<std::uint64_t>(status.st_size), Nanoseconds(status.st_mtim),
                      Nanoseconds(status.st_ctim), status.st_dev, status.st_ino}};
}

} // namespace Orvanta
