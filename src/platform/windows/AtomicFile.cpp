#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/LinkEnd.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"
#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <windows.h>

namespace Orvanta {

namespace {

// While its writer lives, a file for writing can be opened for nothing but a rename: whoever gets more of it knows
// that the writer is gone.
Handle MakeLocked(const std::string& path) {
    return Handle(::CreateFileW(WidePath(path).c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

constexpr std::string_view TemporaryStem = ".orvtmp-";

// Opened for nothing but its removal and shared with nobody: that fails as long as the writer lives.
void RemoveAbandoned(const std::string& path) {
    const Handle removed(::CreateFileW(WidePath(path).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

// A file that goes away with its handle, for bytes that wait.
Handle MakeNamelessFile() {
    const std::wstring folder = WidePath(SystemTemporaryFolder());
    std::array<wchar_t, MAX_PATH + 1> path{};
    // Makes the file too, so that no other program gets the name.
    if (::GetTempFileNameW(folder.c_str(), L"orv", 0, path.data()) == 0) {
        return {};
    }
    return Handle(::CreateFileW(path.data(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

// Puts all that `from` holds in the place of what `to`, which stands at its start, holds; false, with the system's
// error set, when it can't.
bool Overwrite(const Handle& to, const Handle& from) {
    constexpr std::size_t BlockSize = 65536;
    std::array<char, BlockSize> block{};
    if (::SetFilePointerEx(from.Get(), {}, nullptr, FILE_BEGIN) == FALSE) {
        return false;
    }
    while (true) {
        DWORD count = 0;
        if (::ReadFile(from.Get(), block.data(), BlockSize, &count, nullptr) == FALSE) {
            return false;
        }
        if (count == 0) {
            return ::SetEndOfFile(to.Get()) != FALSE;
        }
        if (!WriteAll(to, {block.data(), count})) {
            return false;
        }
    }
}

// Opens a console, a pipe or the like, which can't be replaced.
Handle OpenDevice(const std::string& path) {
    return Handle(::CreateFileW(WidePath(path).c_str(), GENERIC_WRITE, AnySharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

struct AtomicFile::Handle {
    std::string target;        // where the links of the given path end
    std::string temporaryPath; // empty for what is not replaced: overwritten in place, a device, a pipe
    Orvanta::Handle file;      // takes the bytes
    bool isInPlace = false;
    bool isToBeSynced = false;

    // The name depends on the target alone, so that the next writer finds what a killed one left; only writers at work
    // at the same time need further names. ERROR_SUCCESS, or why there can be no such file.
    DWORD MakeBeside() {
        const std::string stem = std::string(TemporaryStem) + std::to_string(Fnv1a(target)) + "-";
        for (int attempt = 0; !file.IsOpen(); ++attempt) {
            constexpr int MostWriters = 1000;
            const std::string candidate = JoinPath(DirectoryOf(target), stem + std::to_string(attempt));
            // What a killed writer has left is gone then; a writer at work keeps its file, and the next name is tried.
            RemoveAbandoned(candidate);
            file = MakeLocked(candidate);
            const DWORD error = ::GetLastError();
            if (!file.IsOpen() && (error != ERROR_FILE_EXISTS || attempt == MostWriters)) {
                return error;
            }
            temporaryPath = candidate;
        }
        return ERROR_SUCCESS;
    }
};

AtomicFile::AtomicFile(std::string path, Durability durability)
    : path_(std::move(path)), handle_(std::make_unique<Handle>()) {
    handle_->target = EndOfLinks(path_);
    const PathAnswer target = LookAt(handle_->target);
    if (!target.kind) {
        throw FileException(path_, target.reason);
    }
    // The system's own answer for one that is opened as a file.
    if (target.kind == PathKind::Folder) {
        FailFile(path_, ERROR_ACCESS_DENIED);
    }
    if (target.kind == PathKind::Other) {
        handle_->file = OpenDevice(handle_->target);
        if (!handle_->file.IsOpen()) {
            FailFile(path_, ::GetLastError());
        }
        return;
    }
    const bool exists = target.kind == PathKind::File;
    handle_->isToBeSynced = exists && durability == Durability::Synced;
    const bool hasOneName = !exists || IdentityOf(handle_->target).value_or(FileIdentity()).names == 1;
    // With several names, a rename would leave the others with the old contents: it is overwritten instead.
    const DWORD error = hasOneName ? handle_->MakeBeside() : ERROR_SUCCESS;
    if (error != ERROR_SUCCESS && (!exists || error != ERROR_ACCESS_DENIED)) {
        FailFile(path_, error);
    }
    if (handle_->temporaryPath.empty()) {
        handle_->isInPlace = true;
        handle_->file = MakeNamelessFile();
        // Opened and closed again: that it can't be written to is to be known before the work and not behind it.
        const Orvanta::Handle probe = OpenForWriting(handle_->target);
        if (!handle_->file.IsOpen() || !probe.IsOpen()) {
            FailFile(path_, ::GetLastError());
        }
    }
}

AtomicFile::~AtomicFile() {
    // Closed first, since our own handle forbids the removal.
    handle_->file.Reset();
    if (!handle_->temporaryPath.empty()) {
        RemoveFile(handle_->temporaryPath);
    }
}

void AtomicFile::Append(std::string_view bytes) {
    if (!WriteAll(handle_->file, bytes)) {
        FailFile(path_, ::GetLastError());
    }
}

void AtomicFile::Commit() {
    if (handle_->isInPlace) {
        const Orvanta::Handle target = OpenForWriting(handle_->target);
        if (!target.IsOpen() || !Overwrite(target, handle_->file) ||
            (handle_->isToBeSynced && ::FlushFileBuffers(target.Get()) == FALSE)) {
            FailFile(path_, ::GetLastError());
        }
    } else if (!handle_->temporaryPath.empty()) {
        // Before the rename, which may reach the disk earlier than the bytes.
        if (handle_->isToBeSynced && ::FlushFileBuffers(handle_->file.Get()) == FALSE) {
            FailFile(path_, ::GetLastError());
        }
        try {
            RenameOver(handle_->temporaryPath, handle_->target);
        } catch (const SystemFault& fault) {
            FailFile(path_, fault.error);
        }
    }
    handle_->temporaryPath.clear();
    handle_->file.Reset();
}

bool AtomicFile::IsInPlace() const noexcept {
    return handle_->isInPlace;
}

// The system has no such names.
bool IsOwnOpenFile(const std::string& /*path*/) {
    return false;
}

void RemoveAbandonedFiles(const std::string& folder) noexcept {
    std::error_code error;
    std::filesystem::directory_iterator file(NativePath(folder), error);
    for (const std::filesystem::directory_iterator end; !error && file != end; file.increment(error)) {
        const std::string path = PathText(file->path());
        if (FileNameOf(path).starts_with(TemporaryStem)) {
            RemoveAbandoned(path);
        }
    }
}

} // namespace Orvanta
