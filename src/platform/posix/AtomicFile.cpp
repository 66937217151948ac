#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/LinkEnd.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"
#include "platform/posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

namespace {

constexpr unsigned NewFileMode = 0666;
constexpr std::string_view TemporaryStem = ".orvtmp-";

[[noreturn]] void Fail(const std::string& path, int error) {
    throw FileException(path, SystemReason(error));
}

// Removes the file at `path` if the run that made it is gone. Whether there is still something in the way is for the
// caller to find out.
void RemoveAbandoned(const std::string& path) {
    const Descriptor lock = TakeExistingLock(path);
    // Removed while we hold its lock: nobody can have made it their own meanwhile.
    if (lock.IsOpen()) {
        ::unlink(path.c_str());
    }
}

// A folder that may not be written to, or one that gives its files to somebody else.
bool MayNotMakeFiles(int error) {
    return error == EACCES || error == EPERM || error == EROFS;
}

// A file without a name, for bytes that wait.
Descriptor MakeNamelessFile() {
    std::string path = JoinPath(SystemTemporaryFolder(), "orvanta-bytes-XXXXXX");
    // Without a name it goes away with the process, however that ends.
    Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
    if (file.IsOpen()) {
        ::unlink(path.c_str());
    }
    return file;
}

// Puts all that `from` holds in the place of what `to` holds; false, with `errno` set, when it can't.
bool Overwrite(int to, int from) {
    // Small enough for the stack, large enough for calls of the system not to count.
    constexpr std::size_t BlockSize = 65536;
    std::array<char, BlockSize> block;
    // Read by place, so that where the writer of `from` stands does not matter.
    off_t size = 0;
    while (true) {
        const ssize_t count = ::pread(from, block.data(), block.size(), size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            // Cut to size at the end and not emptied first: a kill in between leaves bytes rather than none.
            return count == 0 && ::ftruncate(to, size) == 0;
        }
        if (!WriteAll(to, {block.data(), static_cast<std::size_t>(count)})) {
            return false;
        }
        size += count;
    }
}

} // namespace

struct AtomicFile::Handle {
    std::string target;        // where the links of the given path end
    std::string temporaryPath; // empty for what is not replaced: overwritten in place, a device, a pipe
    Descriptor file;           // takes the bytes
    Descriptor overwritten;    // the target, when it gets them in the end
    bool isInPlace = false;
    bool isToBeSynced = false;

    // The name depends on the target alone, so that the next writer finds what a killed one left; only writers at work
    // at the same time need further names. False, with `errno` set, when there can be no such file.
    bool MakeBeside() {
        const std::string stem = std::string(TemporaryStem) + std::to_string(Fnv1a(target)) + "-";
        for (int attempt = 0; !file.IsOpen(); ++attempt) {
            constexpr int MostWriters = 1000;
            temporaryPath = JoinPath(DirectoryOf(target), stem + std::to_string(attempt));
            RemoveAbandoned(temporaryPath);
            // Fails with EEXIST when the one that is there has a living writer: then the next name is tried.
            file = MakeLockedFile(temporaryPath, NewFileMode);
            if (!file.IsOpen() && (errno != EEXIST || attempt == MostWriters)) {
                temporaryPath.clear();
                return false;
            }
        }
        return true;
    }

    void RemoveBeside() noexcept {
        if (!temporaryPath.empty()) {
            ::unlink(temporaryPath.c_str());
            temporaryPath.clear();
        }
    }

    // The bytes wait in a file of the system's folder; false, with `errno` set, when the target can't be written to.
    bool OpenInPlace() {
        RemoveBeside();
        isInPlace = true;
        // Opened at once, not in Commit: that it can't be written to is to be known before hours of work.
        overwritten = OpenFile(target, O_WRONLY);
        file = overwritten.IsOpen() ? MakeNamelessFile() : Descriptor();
        return file.IsOpen();
    }

    // Some file systems tell only when a file is closed that bytes got lost. The lock stays with the other descriptor.
    [[nodiscard]] bool CloseOnce() const {
        Descriptor other = DuplicateOf(file.Number());
        return other.IsOpen() && (::close(other.Release()) == 0 || errno == EINTR);
    }
};

AtomicFile::AtomicFile(std::string path, Durability durability)
    : path_(std::move(path)), handle_(std::make_unique<Handle>()) {
    // Another descriptor of it and not another opening, which would begin at the file's start.
    if (const std::optional<int> own = OwnDescriptor(path_)) {
        handle_->file = DuplicateOf(*own);
        return;
    }
    handle_->target = EndOfLinks(path_);

    struct stat existing {};

    const bool exists = ::stat(handle_->target.c_str(), &existing) == 0;
    // "Can't tell" is no absence: something may be there that we would replace without its rights.
    if (!exists && !IsAbsence(errno)) {
        Fail(path_, errno);
    }
    if (exists && !S_ISREG(existing.st_mode)) {
        handle_->file = OpenFile(handle_->target, O_WRONLY);
        if (!handle_->file.IsOpen()) {
            Fail(path_, errno);
        }
        return;
    }
    // Where nothing was, a loss leaves nothing, which is no worse than a kill a moment before.
    handle_->isToBeSynced = exists && durability == Durability::Synced;
    // A rename would leave the other names with the old contents.
    const bool hasOneName = !exists || existing.st_nlink == 1;
    if (hasOneName && handle_->MakeBeside()) {
        // Without the right owner, whoever could read or write the file could do so no longer: overwrite it instead.
        if (!exists || GiveRightsOf(existing, handle_->file.Number())) {
            return;
        }
    } else if (!exists || (hasOneName && !MayNotMakeFiles(errno))) {
        Fail(path_, errno);
    }
    if (!handle_->OpenInPlace()) {
        Fail(path_, errno);
    }
}

AtomicFile::~AtomicFile() {
    handle_->RemoveBeside();
}

void AtomicFile::Append(std::string_view bytes) {
    if (!WriteAll(handle_->file.Number(), bytes)) {
        Fail(path_, errno);
    }
}

void AtomicFile::Commit() {
    Handle& handle = *handle_;
    // Before the rename: a file whose bytes got lost must not take the place of a good one.
    const bool isWhole =
        (!handle.isToBeSynced || handle.isInPlace || SyncToDisk(handle.file.Number())) && handle.CloseOnce();
    if (!isWhole) {
        Fail(path_, errno);
    }
    if (!handle.temporaryPath.empty() && std::rename(handle.temporaryPath.c_str(), handle.target.c_str()) != 0) {
        if (errno != EBUSY) {
            Fail(path_, errno);
        }
        // Mounted by itself: nothing can take its place.
        handle.isInPlace = true;
        handle.overwritten = OpenFile(handle.target, O_WRONLY);
    }
    // The one way that a kill can leave a part; there is no other for such a target.
    if (handle.isInPlace) {
        const int target = handle.overwritten.Number();
        if (!handle.overwritten.IsOpen() || !Overwrite(target, handle.file.Number()) ||
            (handle.isToBeSynced && !SyncToDisk(target)) || ::close(handle.overwritten.Release()) != 0) {
            Fail(path_, errno);
        }
        handle.RemoveBeside();
    }
    handle.temporaryPath.clear();
    handle.file.Reset();
}

bool AtomicFile::IsInPlace() const noexcept {
    return handle_->isInPlace;
}

bool IsOwnOpenFile(const std::string& path) {
    return OwnDescriptor(path).has_value();
}

void RemoveAbandonedFiles(const std::string& folder) noexcept {
    std::error_code error;
    std::filesystem::directory_iterator file(folder, error);
    for (const std::filesystem::directory_iterator end; !error && file != end; file.increment(error)) {
        // Whether its writer is gone is found out by its lock, not by its age.
        if (file->path().filename().native().starts_with(TemporaryStem)) {
            RemoveAbandoned(file->path().native());
        }
    }
}

} // namespace Orvanta
