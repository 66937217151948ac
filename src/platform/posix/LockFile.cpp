#include "platform/LockFile.h"

#include "platform/Paths.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Orvanta {

namespace {

constexpr unsigned LockFileMode = 0666;

Descriptor OpenLockFile(const std::string& path) {
    Descriptor file = OpenFile(path, O_RDWR | O_CREAT, LockFileMode);
    if (!file.IsOpen() && errno == EACCES) {
        file = OpenFile(path, O_RDONLY); // another user's file can be locked as well
    }
    return file;
}

bool IsRemoved(int descriptor) {
    struct stat status {};

    return ::fstat(descriptor, &status) == 0 && status.st_nlink == 0;
}

} // namespace

struct LockFile::Handle {
    std::string path;
    Descriptor file;
};

LockFile::LockFile() noexcept = default;

LockFile::~LockFile() = default;

LockFile::LockFile(LockFile&& other) noexcept
    : handle_(std::move(other.handle_)), state_(std::exchange(other.state_, State::None)) {}

LockFile& LockFile::operator=(LockFile&& other) noexcept {
    handle_ = std::move(other.handle_);
    state_ = std::exchange(other.state_, State::None);
    return *this;
}

LockFile::State LockFile::Take(const std::string& directory, const std::string& key) {
    handle_.reset();
    const std::string path = JoinPath(directory, FileName(key));
    while (true) {
        Descriptor file = OpenLockFile(path);
        if (!file.IsOpen()) {
            return state_ = State::Unavailable;
        }
        if (::flock(file.Number(), LOCK_EX | LOCK_NB) != 0) {
            return state_ = errno == EWOULDBLOCK ? State::HeldByOther : State::Unavailable;
        }
        // Its last holder may have removed it between the two calls: then the lock is worth nothing.
        if (!IsRemoved(file.Number())) {
            handle_ = std::make_unique<Handle>(Handle{path, std::move(file)});
            return state_ = State::Held;
        }
    }
}

void LockFile::ReleaseAndRemove() noexcept {
    if (handle_ != nullptr) {
        ::unlink(handle_->path.c_str()); // first: once given up, it may be another's
        handle_.reset();
    }
    state_ = State::None;
}

} // namespace Orvanta
