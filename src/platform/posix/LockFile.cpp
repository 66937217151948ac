#include "platform/LockHolder.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Orvanta {

namespace {

constexpr unsigned LockFileMode = 0666;

// Made where there is none; open for whatever this user may do with it.
Descriptor OpenLockFile(const std::string& path) {
    // For writing where possible: over a network, some file systems lock nothing else exclusively.
    Descriptor file = OpenFile(path, O_RDWR | O_CREAT, LockFileMode);
    if (!file.IsOpen() && errno == EACCES) {
        file = OpenFile(path, O_RDONLY); // another user's file can be locked as well
    }
    return file;
}

// Whether no name leads to the file any more.
bool IsRemoved(int descriptor) {
    struct stat status {};

    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

} // namespace

LockFile::State OpenLocked(const std::string& path, std::shared_ptr<void>& holder) {
    using State = LockFile::State;
    while (true) {
        Descriptor file = OpenLockFile(path);
        if (!file.IsOpen()) {
            return State::Unavailable;
        }
        if (::flock(file.Number(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) {
                return State::HeldByOther;
            }
            ::unlink(path.c_str()); // nobody holds a lock there
            return State::Unsupported;
        }
        // Its last holder may have removed it between the two calls: then the lock is worth nothing.
        if (!IsRemoved(file.Number())) {
            holder = std::make_shared<Descriptor>(std::move(file));
            return State::Held;
        }
    }
}

void RemoveLocked(const std::string& path, std::shared_ptr<void>& holder) noexcept {
    ::unlink(path.c_str()); // first: once given up, it may be another's
    holder.reset();
}

} // namespace Orvanta
