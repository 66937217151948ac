#include "platform/FileStamp.h"

#include "platform/windows/FileAccess.h"
#include "platform/windows/Handle.h"
#include "platform/windows/WideText.h"

#include <windows.h>

namespace Orvanta {

namespace {

constexpr DWORD AnySharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

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
    const Handle file(::CreateFileW(WidePath(path).c_str(), FILE_READ_ATTRIBUTES, AnySharing, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
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
