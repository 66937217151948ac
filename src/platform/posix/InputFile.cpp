#include "platform/InputFile.h"

#include "platform/Exceptions.h"
#include "platform/StopFlag.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace Orvanta {

struct InputFile::Handle {
    std::string path;
    Descriptor file;

    struct stat status {};

    [[noreturn]] void Fail() const { throw FileException(path, SystemReason(errno)); }
};

// Not blocking: else a pipe opens when a writer comes, and not before.
InputFile::InputFile(const std::string& path) : handle_(std::make_unique<Handle>()) {
    handle_->path = path;
    // O_NOCTTY: reading a terminal must not make it ours.
    handle_->file = OpenFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!handle_->file.IsOpen() || ::fstat(handle_->file.Number(), &handle_->status) != 0) {
        handle_->Fail();
    }
    // Opening a folder succeeds and reading it fails: said at once.
    if (S_ISDIR(handle_->status.st_mode)) {
        errno = EISDIR;
        handle_->Fail();
    }
}

InputFile::~InputFile() = default;
InputFile::InputFile(InputFile&& other) noexcept = default;
InputFile& InputFile::operator=(InputFile&& other) noexcept = default;

std::size_t InputFile::Read(std::span<char> target) {
    constexpr int MillisecondsBetweenLooks = 100;
    const int number = handle_->file.Number();
    // A file on a disk is always ready, so it costs no look.
    const bool mayWait = !S_ISREG(handle_->status.st_mode);
    while (!mayWait || !ProcessStopFlag().IsSet()) {
        pollfd input = {.fd = number, .events = POLLIN, .revents = 0};
        // A pipe that no writer has opened yet gives no event, and would read as one at its end.
        if (mayWait && ::poll(&input, 1, MillisecondsBetweenLooks) <= 0) {
            continue;
        }
        const ssize_t count = ::read(number, target.data(), target.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR && errno != EAGAIN) {
            handle_->Fail();
        }
    }
    return 0;
}

std::size_t InputFile::SizeHint() const noexcept {
    // Only a hint: the file may grow or shrink while it is read.
    return S_ISREG(handle_->status.st_mode) ? static_cast<std::size_t>(handle_->status.st_size) : 0;
}

bool InputFile::IsEndless() const noexcept {
    constexpr unsigned NullDevice = 3; // of those that the memory driver has: empty
    const mode_t mode = handle_->status.st_mode;
    const bool isNull = S_ISCHR(mode) && handle_->status.st_rdev == ::makedev(1, NullDevice);
    return (S_ISCHR(mode) && !isNull && ::isatty(handle_->file.Number()) == 0) || S_ISBLK(mode);
}

} // namespace Orvanta
