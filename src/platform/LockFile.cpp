#include "platform/LockFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/LockHolder.h"
#include "platform/Paths.h"

#include <thread>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::chrono::milliseconds LookInterval{20}; // a holder's end wakes nobody

// Where it can't be told where the path leads, there is no folder to put the file into either.
std::string TargetIfKnown(const std::string& path) {
    try {
        return TargetOf(path);
    } catch (const FileException&) {
        return path;
    }
}

} // namespace

LockPlace LockPlaceOf(const std::string& path) {
    if (IsOwnOpenFile(path) || LookAt(path).kind == PathKind::Other) {
        return {};
    }
    const std::string target = TargetIfKnown(path);
    // The name without its folder: another machine may see the folder under another path.
    return {std::string(DirectoryOf(target)), ComparablePath(FileNameOf(target))};
}

LockFile::LockFile(LockFile&& other) noexcept
    : path_(std::move(other.path_)), holder_(std::move(other.holder_)),
      state_(std::exchange(other.state_, State::None)) {}

LockFile& LockFile::operator=(LockFile&& other) noexcept {
    path_ = std::move(other.path_);
    holder_ = std::move(other.holder_);
    state_ = std::exchange(other.state_, State::None);
    return *this;
}

LockFile::State LockFile::Take(const std::string& directory, const std::string& key) {
    // What was held goes first: taking the same lock again would find ourselves in the way.
    holder_.reset();
    path_ = JoinPath(directory, FileName(key));
    return state_ = OpenLocked(path_, holder_);
}

void LockFile::ReleaseAndRemove() noexcept {
    if (holder_ != nullptr) {
        RemoveLocked(path_, holder_);
    }
    state_ = State::None;
}

LockFile::State LockFile::Take(const LockPlace& place, std::chrono::milliseconds longest, const StopFlag& stop) {
    using Clock = std::chrono::steady_clock;
    if (place.folder.empty()) {
        holder_.reset();
        return state_ = State::Unavailable;
    }
    const Clock::time_point end = Clock::now() + longest;
    // At least one try, however short the wait may be.
    while (Take(place.folder, place.key) == State::HeldByOther && Clock::now() < end && !stop.IsSet()) {
        std::this_thread::sleep_for(LookInterval);
    }
    return state_;
}

std::string LockFile::FileName(const std::string& key) {
    // A hash, since a key may hold what no file name may, and be longer than one.
    return ".orvlock-" + std::to_string(Fnv1a(key));
}

} // namespace Orvanta
