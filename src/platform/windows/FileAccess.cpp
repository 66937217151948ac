#include "platform/windows/FileAccess.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>

#include <windows.h>

namespace Orvanta {

static_assert(AnySharing == (FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE));

namespace {

// The system tells no event for the moment when another program lets a file go.
constexpr DWORD PauseMilliseconds = 10;
// Two seconds in all: a scanner takes less, and a lasting fault is told soon enough.
constexpr int MostPauses = 200;

// A file open in another program answers so; so does one that may not be touched at all.
bool MayPass(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

// A refusal that does not pass, for which waiting would be in vain.
bool IsReadOnly(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0;
}

} // namespace

void FailFile(const std::string& path, unsigned long error) {
    // The system has the same answer for a folder and for a file that may not be opened.
    const bool isFolder = error == ERROR_ACCESS_DENIED && LookAt(path).kind == PathKind::Folder;
    throw FileException(path,
                        isFolder ? std::make_error_code(std::errc::is_a_directory).message() : SystemReason(error));
}

bool IsAbsence(unsigned long error) noexcept {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_DIRECTORY:
        return true;
    default:
        return false;
    }
}

Handle OpenForLooking(const std::string& path) {
    return Handle(::CreateFileW(WidePath(path).c_str(), FILE_READ_ATTRIBUTES, AnySharing, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

Handle OpenForWriting(const std::string& path) {
    return Handle(::CreateFileW(WidePath(path).c_str(), GENERIC_WRITE, AnySharing, nullptr, OPEN_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool IsOnDisk(const Handle& file) {
    return ::GetFileType(file.Get()) == FILE_TYPE_DISK;
}

bool WriteAll(const Handle& file, std::string_view bytes) {
    constexpr std::size_t LargestPiece = 1U << 30U;
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), LargestPiece));
        if (::WriteFile(file.Get(), bytes.data(), size, &count, nullptr) == FALSE) {
            return false;
        }
        bytes.remove_prefix(count);
    }
    return true;
}

void RenameOver(const std::string& from, const std::string& to) {
    const std::wstring source = WidePath(from);
    const std::wstring target = WidePath(to);
    for (int pauses = 0; ::MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING) == FALSE; ++pauses) {
        const DWORD error = ::GetLastError();
        if (!MayPass(error) || IsReadOnly(target) || pauses == MostPauses) {
            throw SystemFault{error};
        }
        ::Sleep(PauseMilliseconds);
    }
}

} // namespace Orvanta
