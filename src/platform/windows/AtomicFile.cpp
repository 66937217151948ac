#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/LinkEnd.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/windows/FileAccess.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

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

void RemoveAbandoned(const std::string& path) {
    const Handle removed(::CreateFileW(WidePath(path).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

// Opens a console, a pipe or the like, which can't be replaced.
Handle OpenDevice(const std::string& path) {
    return Handle(::CreateFileW(WidePath(path).c_str(), GENERIC_WRITE, AnySharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

struct AtomicFile::Handle {
    std::string target;        // where the links of the given path end
    std::string temporaryPath; // empty for what can't be replaced: a device or a pipe
    Orvanta::Handle file;
};

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)), handle_(std::make_unique<Handle>()) {
    handle_->target = EndOfLinks(path_);
    const PathAnswer target = LookAt(handle_->target);
    if (!target.kind) {
        throw FileException(path_, target.reason);
    }
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

    // The name depends on the target alone, so that the next writer finds what a killed one left; only writers at work
    // at the same time need further names.
    const std::string stem = std::string(TemporaryStem) + std::to_string(Fnv1a(handle_->target)) + "-";
    for (int attempt = 0; !handle_->file.IsOpen(); ++attempt) {
        constexpr int MostWriters = 1000;
        const std::string candidate = JoinPath(DirectoryOf(handle_->target), stem + std::to_string(attempt));
        RemoveAbandoned(candidate);
        handle_->file = MakeLocked(candidate);
        const DWORD error = ::GetLastError();
        if (!handle_->file.IsOpen() && (error != ERROR_FILE_EXISTS || attempt == MostWriters)) {
            FailFile(path_, error);
        }
        handle_->temporaryPath = candidate;
    }
}

AtomicFile::~AtomicFile() {
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
    if (!handle_->temporaryPath.empty()) {
        try {
            RenameOver(handle_->temporaryPath, handle_->target);
        } catch (const SystemFault& fault) {
            FailFile(path_, fault.error);
        }
    }
    handle_->temporaryPath.clear();
    handle_->file.Reset();
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
