#include "platform/TemporaryPlace.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <windows.h>

namespace Orvanta {

namespace {

constexpr std::uint64_t OldAge = 24ULL * 60 * 60 * 10'000'000; // in steps of 100 ns

std::uint64_t Steps(const FILETIME& time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32U) | time.dwLowDateTime;
}

std::uint64_t Now() {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    return Steps(now);
}

// Goes on past what can't be removed. `folder` is in the form without a limit.
void RemoveContents(const std::wstring& folder) {
    WIN32_FIND_DATAW entry{};
    void* const search = ::FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        const std::wstring_view name = static_cast<const wchar_t*>(entry.cFileName);
        const std::wstring path = folder + L'\\' + std::wstring(name);
        if (name == L"." || name == L"..") {
            continue;
        }
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            ::DeleteFileW(path.c_str());
            continue;
        }
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) { // behind a link is nothing of ours
            RemoveContents(path);
        }
        ::RemoveDirectoryW(path.c_str());
    } while (::FindNextFileW(search, &entry) != FALSE);
    ::FindClose(search);
}

// The form without a limit, whatever the length: what lies deeper may be longer.
std::wstring UnlimitedPath(const std::string& path) {
    const std::wstring wide = ToWide(NormalizePath(path));
    return wide.starts_with(L"\\\\") ? wide : L"\\\\?\\" + wide;
}

} // namespace

std::string SystemTemporaryFolder() {
    std::array<wchar_t, MAX_PATH + 2> path{};
    const DWORD length = ::GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    if (length == 0 || length >= path.size()) {
        throw ZelmException("Couldn't ask for the folder for temporary files: " + SystemReason(::GetLastError()));
    }
    return AbsolutePath(FromWide({path.data(), length}));
}

std::string HostName() {
    std::array<wchar_t, 256> name{};
    auto length = static_cast<DWORD>(name.size());
    return ::GetComputerNameExW(ComputerNameDnsHostname, name.data(), &length) != FALSE
               ? FromWide({name.data(), length})
               : std::string();
}

// The folder for temporary files is the user's own and gives what is made in it the same rights.
bool MakePrivateFolder(const std::string& path) {
    if (::CreateDirectoryW(WidePath(path).c_str(), nullptr) != FALSE) {
        return true;
    }
    if (const DWORD error = ::GetLastError(); error != ERROR_ALREADY_EXISTS) {
        throw FileException("Couldn't make the temporary folder", path, SystemReason(error));
    }
    return false;
}

FolderState LookAtFolder(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (::GetFileAttributesExW(WidePath(path).c_str(), GetFileExInfoStandard, &data) == FALSE ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return FolderState::NotOurs;
    }
    return Now() > Steps(data.ftLastWriteTime) + OldAge ? FolderState::Old : FolderState::Fresh;
}

void RemoveTree(const std::string& folder) noexcept {
    try {
        const std::wstring path = UnlimitedPath(folder);
        RemoveContents(path);
        ::RemoveDirectoryW(path.c_str());
    } catch (...) {
        return; // what can't be removed now, the next run tries again
    }
}

} // namespace Orvanta
