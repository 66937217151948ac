#include "platform/posix/Descriptor.h"

#include "platform/StopFlag.h"
#include "platform/Text.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Orvanta {

namespace {

// Locks an open file; false, with EWOULDBLOCK, when another holds it or `path` names another file by now; false with
// another error where there are no locks.
bool LockAs(int descriptor, const std::string& path) {
    // The lock belongs to the open file: it goes when the last descriptor is closed, a kill included.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        return false;
    }

    struct stat locked {};

    struct stat named {};

    // Between the opening and the lock, the file may have been removed and made anew: a lock of the old one protects
    // nothing.
    const bool isSame = ::fstat(descriptor, &locked) == 0 && ::lstat(path.c_str(), &named) == 0 &&
                        locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
    if (!isSame) {
        errno = EWOULDBLOCK;
    }
    return isSame;
}

} // namespace

std::string SystemReason(int error) {
    return std::generic_category().message(error);
}

bool IsAbsence(int error) noexcept {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

Descriptor OpenFile(const std::string& path, int flags, unsigned mode) {
    int number = -1;
    // A signal that asks the process to stop is meant to end the wait for the other end of a pipe.
    do {
        number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (number < 0 && errno == EINTR && !ProcessStopFlag().IsSet());
    return Descriptor(number);
}

std::optional<int> OwnDescriptor(std::string_view path) {
    constexpr std::pair<std::string_view, int> Streams[] = {
        {"/dev/stdin", STDIN_FILENO},
        {"/dev/stdout", STDOUT_FILENO},
        {"/dev/stderr", STDERR_FILENO},
    };
    std::optional<int> number;
    for (const auto& [name, stream] : Streams) {
        if (path == name) {
            number = stream;
        }
    }
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (path.starts_with(folder)) {
            number = WholeNumber<int>(path.substr(folder.size()));
        }
    }
    // A number that is not open is no file of ours, whatever the path says.
    return number && *number >= 0 && ::fcntl(*number, F_GETFD) >= 0 ? number : std::nullopt;
}

Descriptor DuplicateOf(int descriptor) {
    return Descriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

bool SyncToDisk(int descriptor) noexcept {
    while (::fsync(descriptor) != 0) {
        // Pipes, terminals and some file systems have nothing to sync.
        if (errno == EINVAL || errno == ENOTSUP || errno == EROFS) {
            return true;
        }
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool GiveRightsOf(const struct stat& other, int descriptor) noexcept {
    constexpr mode_t PermissionBits = 07777;

    struct stat own {};

    if (::fstat(descriptor, &own) != 0) {
        return false;
    }
    const bool isOthers = own.st_uid != other.st_uid || own.st_gid != other.st_gid;
    // The owner first: changing it clears some of the permission bits.
    if (isOthers && ::fchown(descriptor, other.st_uid, other.st_gid) != 0) {
        return false;
    }
    // A file system without permissions has none to lose.
    static_cast<void>(::fchmod(descriptor, other.st_mode & PermissionBits));
    return true;
}

bool WriteAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) { // somebody has made our output non-blocking
            pollfd output = {.fd = descriptor, .events = POLLOUT, .revents = 0};
            static_cast<void>(::poll(&output, 1, -1));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

Descriptor MakeLockedFile(const std::string& path, unsigned mode) {
    Descriptor file = OpenFile(path, O_RDWR | O_CREAT | O_EXCL, mode);
    // Between the two calls another may have taken the file for an abandoned one: then it is lost.
    if (file.IsOpen() && !LockAs(file.Number(), path) && errno == EWOULDBLOCK) {
        file.Reset();
        errno = EEXIST;
    }
    return file;
}

Descriptor TakeExistingLock(const std::string& path) {
    // No link: a stranger could have left one that leads to a file of ours.
    Descriptor file = OpenFile(path, O_WRONLY | O_NOFOLLOW);
    if (file.IsOpen() && !LockAs(file.Number(), path)) {
        const int error = errno;
        file.Reset();
        errno = error;
    }
    return file;
}

} // namespace Orvanta
