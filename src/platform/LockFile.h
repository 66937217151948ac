#pragma once

#include "platform/StopFlag.h"

#include <chrono>
#include <memory>
#include <string>

namespace Orvanta {

/// Which lock belongs to a thing, and where its file lies.
struct LockPlace {
    std::string folder; ///< empty for what has no lock
    std::string key;
};

/// The lock of what stands, or is to stand, at `path`: one thing has one lock, however its path is spelt and whatever
/// links lead there. It lies beside the thing, where every machine that shares the folder finds it under one name; a
/// number of the device or the file would be another one there. What can't be replaced, such as a pipe, has no lock.
[[nodiscard]] LockPlace LockPlaceOf(const std::string& path);

/// Keeps two runs of the driver from working on the same thing at once. The lock dies with its holder; its file, named
/// ".orvlock-" and a hash of the key, stays. Move-only; one thread at a time.
class LockFile {
public:
    enum class State {
        None,        ///< no key given yet
        Held,        ///< this object holds the lock
        HeldByOther, ///< another object, in this process or another, holds it
        Unavailable, ///< the file can't be opened, for example in a read-only folder
        Unsupported, ///< the file system has no locks; nothing is left there
    };

    LockFile() noexcept = default;
    ~LockFile() = default;
    /// The lock goes along; the moved one holds none.
    LockFile(LockFile&& other) noexcept;
    LockFile& operator=(LockFile&& other) noexcept;

    /// Gives up what is held and tries to take the lock of `key` in `directory`, without waiting and without throwing.
    State Take(const std::string& directory, const std::string& key);

    /// The same, but waits for another holder for `longest` at most, and no longer than `stop` lets it. `Unavailable`
    /// for a place without a folder.
    State Take(const LockPlace& place, std::chrono::milliseconds longest, const StopFlag& stop);

    /// Gives up what is held and removes its file, for a lock that leaves nothing behind. Whoever waits for the lock
    /// gets it all the same.
    void ReleaseAndRemove() noexcept;

    /// The answer of the last `Take`.
    [[nodiscard]] State CurrentState() const noexcept { return state_; }

    /// The name of the lock file of a key.
    [[nodiscard]] static std::string FileName(const std::string& key);

private:
    std::string path_;             // of what is held
    std::shared_ptr<void> holder_; // the open file; closing it gives the lock up
    State state_ = State::None;
};

} // namespace Orvanta
