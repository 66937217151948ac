#include "platform/TemporaryFolder.h"

#include "platform/ChildWatch.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"

#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

namespace Orvanta {

namespace {

constexpr std::string_view NamePrefix = "orvanta-analyzer-";
constexpr const char* LockKey = "temporary folder";

// By chance, so that no other user can take the names beforehand.
std::string RandomName() {
    constexpr std::string_view Digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    constexpr int Length = 12;
    std::random_device random;
    std::uniform_int_distribution<std::size_t> digit(0, Digits.size() - 1);
    std::string name(NamePrefix);
    for (int i = 0; i < Length; ++i) {
        name += Digits[digit(random)];
    }
    return name;
}

// A folder without a lock file belongs to a run that is just starting, or died there: a day old, it is no longer
// starting.
bool MayBeAbandoned(const std::string& folder) {
    switch (LookAtFolder(folder)) {
    case FolderState::NotOurs:
        return false;
    case FolderState::Fresh:
        return LookAt(JoinPath(folder, LockFile::FileName(LockKey))).IsThere();
    case FolderState::Old:
        return true;
    }
    return false;
}

// Where an open file can't be removed, the lock's goes last.
void RemoveLocked(const std::string& folder, LockFile& lock) {
    RemoveTree(folder);
    lock = LockFile();
    RemoveTree(folder);
}

// Removes what killed runs have left. A run that starts meanwhile and loses its lock to us takes another folder.
void Sweep(const std::string& parent) {
    std::error_code error;
    std::filesystem::directory_iterator entry(NativePath(parent), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string folder = JoinPath(parent, PathText(entry->path().filename()));
        if (!FileNameOf(folder).starts_with(NamePrefix) || !MayBeAbandoned(folder)) {
            continue;
        }
        LockFile lock;
        // Whoever gets the lock knows that the run which made the folder is gone.
        if (lock.Take(folder, LockKey) == LockFile::State::Held) {
            RemoveLocked(folder, lock);
        }
    }
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    const std::string parent = SystemTemporaryFolder();
    // Before our own folder is made, which needs no look then.
    Sweep(parent);
    constexpr int MostAttempts = 100;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        path_ = JoinPath(parent, RandomName());
        RemoveWhenKilled(path_); // a kill right behind the making is covered too
        if (!MakePrivateFolder(path_)) {
            continue;
        }
        if (lock_.Take(path_, LockKey) == LockFile::State::Held) {
            return;
        }
        RemoveTree(path_); // another run swept it between the two calls, or it can't hold a lock
    }
    throw ZelmException("Couldn't lock a temporary folder in " + parent);
}

TemporaryFolder::~TemporaryFolder() {
    RemoveLocked(path_, lock_);
}

} // namespace Orvanta
