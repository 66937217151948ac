#include "platform/FileStamp.h"

#include "platform/windows/FileAccess.h"
#include "platform/windows/Handle.h"

#include <windows.h>

namespace Orvanta {

namespace {

// The system counts steps of 100 nanoseconds since 1601; nanoseconds since then would not fit.
std::int64_t Nanoseconds(const LARGE_INTEGER& time) {
    constexpr std::int64_t UnixEpoch = 116'444'736'000'000'000;
    constexpr std::int64_t PerStep = 100;
    return time.QuadPart == 0 ? 0 : (time.QuadPart - UnixEpoch) * PerStep;
}

} // namespace

std::optional<FileStamp> StampOf(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    const Handle file = OpenForLooking(path);
    FILE_BASIC_INFO times{};
    FILE_STANDARD_INFO standard{};
    if (!file.IsOpen() || !IsOnDisk(file) ||
        ::GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &times, sizeof times) == FALSE ||
        ::GetFileInformationByHandleEx(file.Get(), FileStandardInfo, &standard, sizeof standard) == FALSE ||
        standard.Directory != FALSE) {
        return std::nullopt;
    }
    return FileStamp{static_cast<std::uint64_t>(standard.EndOfFile.QuadPart), Nanoseconds(times.LastWriteTime),
                     Nanoseconds(times.ChangeTime)};
}

} // namespace Orvanta
