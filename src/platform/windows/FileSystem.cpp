#include "platform/Files.h"
#include "platform/LinkEnd.h"
#include "platform/Paths.h"
#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <windows.h>
#include <aclapi.h>

namespace Orvanta {

namespace {

// A path as people write it, made from the form without a limit.
std::wstring PlainForm(std::wstring path) {
    constexpr std::wstring_view Unc = L"\\\\?\\UNC\\";
    constexpr std::wstring_view Local = L"\\\\?\\";
    if (path.starts_with(Unc)) {
        return path.replace(0, Unc.size(), L"\\\\");
    }
    return path.starts_with(Local) ? path.substr(Local.size()) : path;
}

} // namespace

PathAnswer LookAt(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return {PathKind::Nothing};
    }
    // An open file answers for where its links lead; attributes asked by path would be those of the link.
    const Handle file = OpenForLooking(path);
    BY_HANDLE_FILE_INFORMATION information{};
    // "NUL", "CON" and their like are found in every folder.
    if (file.IsOpen() && !IsOnDisk(file)) {
        return {PathKind::Other};
    }
    if (!file.IsOpen() || ::GetFileInformationByHandle(file.Get(), &information) == FALSE) {
        const DWORD error = ::GetLastError();
        return IsAbsence(error) ? PathAnswer{PathKind::Nothing} : PathAnswer{std::nullopt, SystemReason(error)};
    }
    return {(information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? PathKind::Folder : PathKind::File};
}

std::optional<std::uint64_t> FileSize(const std::string& path) {
    const Handle file = OpenForLooking(path);
    LARGE_INTEGER size{};
    if (file.IsOpen() && ::GetFileSizeEx(file.Get(), &size) != FALSE) {
        return static_cast<std::uint64_t>(size.QuadPart);
    }
    if (const DWORD error = ::GetLastError(); !IsAbsence(error)) {
        FailFile(path, error);
    }
    return std::nullopt;
}

std::string ResolveLinks(const std::string& path) {
    const Handle file = OpenForLooking(path);
    if (!file.IsOpen()) {
        return path;
    }
    std::wstring target(::GetFinalPathNameByHandleW(file.Get(), nullptr, 0, 0), L'\0');
    target.resize(::GetFinalPathNameByHandleW(file.Get(), target.data(), static_cast<DWORD>(target.size()), 0));
    return target.empty() ? path : FromWide(PlainForm(std::move(target)));
}

// Where the chain leads to nothing, the system tells no end: such a link is replaced.
std::string EndOfLinks(std::string path) {
    const DWORD attributes = ::GetFileAttributesW(WidePath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return path;
    }
    return ResolveLinks(path);
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    const Handle file = OpenForLooking(path);
    BY_HANDLE_FILE_INFORMATION information{};
    if (file.IsOpen() && ::GetFileInformationByHandle(file.Get(), &information) != FALSE) {
        const std::uint64_t high = information.nFileIndexHigh;
        return FileIdentity{information.dwVolumeSerialNumber, high << 32U | information.nFileIndexLow,
                            information.nNumberOfLinks};
    }
    const DWORD error = ::GetLastError();
    if (file.IsOpen() || IsAbsence(error)) {
        return std::nullopt; // a device has no identity of its own
    }
    FailFile(path, error);
}

namespace {

/// The permissions of a file, which the system hands out as one block.
class Permissions {
public:
    explicit Permissions(const std::string& path) {
        const DWORD error = ::GetNamedSecurityInfoW(WidePath(path).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                                    nullptr, nullptr, &list_, nullptr, &block_);
        if (error != ERROR_SUCCESS) {
            FailFile(path, error);
        }
    }

    ~Permissions() { ::LocalFree(block_); }

    Permissions(const Permissions&) = delete;
    Permissions& operator=(const Permissions&) = delete;

    // Whether members of the group may read. A file without a list is everybody's.
    [[nodiscard]] bool LetRead(WELL_KNOWN_SID_TYPE group) const {
        unsigned char sid[SECURITY_MAX_SID_SIZE];
        DWORD size = sizeof sid;
        if (list_ == nullptr || ::CreateWellKnownSid(group, nullptr, sid, &size) == FALSE) {
            return true;
        }
        for (DWORD at = 0; at < list_->AceCount; ++at) {
            void* entry = nullptr;
            if (::GetAce(list_, at, &entry) == FALSE) {
                continue;
            }
            auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
            const bool grants = allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
                                (allowed->Mask & (FILE_READ_DATA | GENERIC_READ | GENERIC_ALL)) != 0;
            if (grants && ::EqualSid(&allowed->SidStart, sid) != FALSE) {
                return true;
            }
        }
        return false;
    }

private:
    PACL list_ = nullptr;
    PSECURITY_DESCRIPTOR block_ = nullptr;
};

} // namespace

bool IsReadableByOthers(const std::string& path) {
    const Permissions permissions(path);
    return permissions.LetRead(WinWorldSid) || permissions.LetRead(WinAuthenticatedUserSid) ||
           permissions.LetRead(WinBuiltinUsersSid);
}

void MakeFolders(const std::string& path) {
    const std::string folder = AbsolutePath(path);
    // Asked from the inside out: most folders are there already.
    if (LookAt(folder).kind == PathKind::Folder) {
        return;
    }
    if (const std::string_view parent = DirectoryOf(folder); parent.size() < folder.size()) {
        MakeFolders(std::string(parent));
    }
    if (::CreateDirectoryW(WidePath(folder).c_str(), nullptr) == FALSE) {
        const DWORD error = ::GetLastError();
        // Another program may have made it meanwhile.
        if (LookAt(folder).kind != PathKind::Folder) {
            FailFile(path, error);
        }
    }
}

void CopyContents(const std::string& from, const std::string& to) {
    if (::CopyFileW(WidePath(from).c_str(), WidePath(to).c_str(), FALSE) == FALSE) {
        FailFile(to, ::GetLastError());
    }
}

} // namespace Orvanta
