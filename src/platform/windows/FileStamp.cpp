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
    // File systems that keep no such time give 0, which stays 0.
    return time.QuadPart == 0 ? 0 : (time.QuadPart - UnixEpoch) * PerStep;
}

std::uint64_t Whole(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32U) | low;
}

} // namespace

StampAnswer AskForStamp(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return {};
    }
    // One handle for both questions, so that they are answered for the same file.
    const Handle file = OpenForLooking(path);
    FILE_BASIC_INFO times{};
    BY_HANDLE_FILE_INFORMATION information{};
    // "NUL", "CON" and their like are found in every folder.
    if (file.IsOpen() && !IsOnDisk(file)) {
        return {};
    }
    if (!file.IsOpen() || ::GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &times, sizeof times) == FALSE ||
        ::GetFileInformationByHandle(file.Get(), &information) == FALSE) {
        return {std::nullopt, IsAbsence(::GetLastError())};
    }
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return {};
    }
    return {FileStamp{Whole(information.nFileSizeHigh, information.nFileSizeLow), Nanoseconds(times.LastWriteTime),
                      Nanoseconds(times.ChangeTime), information.dwVolumeSerialNumber,
                      Whole(information.nFileIndexHigh, information.nFileIndexLow)}};
}

} // namespace Orvanta
