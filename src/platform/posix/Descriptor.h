#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

/// Owns one file descriptor, or none (-1), and closes it. Move-only.
class Descriptor {
public:
    Descriptor() noexcept = default;

    /// Takes the number over; -1, as the system gives it for a failure, is none.
    explicit Descriptor(int number) noexcept : number_(number) {}

    ~Descriptor() { Reset(); }

    /// The other owns none afterwards.
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    Descriptor& operator=(Descriptor&& other) noexcept {
        Reset();
        number_ = std::exchange(other.number_, -1);
        return *this;
    }

    /// -1 when there is none. Stays owned.
    [[nodiscard]] int Number() const noexcept { return number_; }

    /// Whether it owns a descriptor.
    [[nodiscard]] bool IsOpen() const noexcept { return number_ >= 0; }

    /// Closes it. What the system says then is lost: whoever must know it closes by itself.
    void Reset() noexcept {
        if (number_ >= 0) {
            ::close(std::exchange(number_, -1));
        }
    }

    /// Gives the descriptor away: the caller closes it.
    [[nodiscard]] int Release() noexcept { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

/// The system's text for a value of `errno`.
[[nodiscard]] std::string SystemReason(int error);

/// Whether a call failed because its path names nothing, now and for whoever asks.
[[nodiscard]] bool IsAbsence(int error) noexcept;

/// Opens a file, close-on-exec, again after an interruption that does not ask the process to stop; not open when it
/// fails, with `errno` set.
[[nodiscard]] Descriptor OpenFile(const std::string& path, int flags, unsigned mode = 0);

/// The number of the open file of this process that `path` names, as /dev/stdout and /dev/fd/3 do; absent for all other
/// paths and where no such file is open.
[[nodiscard]] std::optional<int> OwnDescriptor(std::string_view path);

/// Another descriptor of the same open file, close-on-exec; not open when it fails, with `errno` set.
[[nodiscard]] Descriptor DuplicateOf(int descriptor);

/// Has the system write a file to its disk; false, with `errno` set, when it can't. True where there is no disk.
[[nodiscard]] bool SyncToDisk(int descriptor) noexcept;

/// Gives an open file owner, group and permissions of another. False when this user may not give it that owner.
[[nodiscard]] bool GiveRightsOf(const struct stat& other, int descriptor) noexcept;

/// Writes all of `bytes` where the descriptor stands; false, with `errno` set, when it can't.
[[nodiscard]] bool WriteAll(int descriptor, std::string_view bytes) noexcept;

/// A file that this process has just made, locked for as long as its descriptor is open. Whoever can take the lock of
/// such a file knows that its maker is gone. A file system without locks gives it without one: it is then taken for
/// that of a maker at work for ever. Not open, with `errno` set, when it can't be made or exists already (`EEXIST`).
[[nodiscard]] Descriptor MakeLockedFile(const std::string& path, unsigned mode);

/// Opens an existing file and takes its lock without waiting. Not open when another holds it or the file has changed
/// its name or place meanwhile, `errno` is then `EWOULDBLOCK`; not open with another `errno` when it can't be opened.
[[nodiscard]] Descriptor TakeExistingLock(const std::string& path);

} // namespace Orvanta
