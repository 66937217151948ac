#include "platform/TemporaryFolder.h"

#include "platform/ChildWatch.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"
#include "platform/Text.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

namespace Orvanta {

namespace {

constexpr std::string_view NamePrefix = "orvanta-analyzer-";
constexpr const char* LockKey = "temporary folder";

constexpr std::string_view Digits = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr std::size_t RandomLength = 12; // of what stands behind the prefix

// By chance, so that no other user can take the names beforehand.
std::string RandomName(const std::string& prefix) {
    std::random_device random;
    std::uniform_int_distribution<std::size_t> digit(0, Digits.size() - 1);
    std::string name(prefix);
    for (std::size_t i = 0; i < RandomLength; ++i) {
        name += Digits[digit(random)];
    }
    return name;
}

// To the end, since the name of one machine may begin like that of another.
bool IsNameOf(std::string_view name, const std::string& prefix) {
    return name.starts_with(prefix) && name.size() == prefix.size() + RandomLength &&
           name.find_first_not_of(Digits, prefix.size()) == std::string_view::npos;
}

// What a file name may hold on every system is kept.
std::string PrefixOfThisMachine() {
    std::string host = ToLowerAscii(HostName());
    std::replace_if(
        host.begin(), host.end(),
        [](char character) { return character != '-' && Digits.find(character) == std::string_view::npos; }, '_');
    return std::string(NamePrefix) + host + "-";
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
void Sweep(const std::string& parent, const std::string& prefix) {
    std::error_code error;
    std::filesystem::directory_iterator entry(NativePath(parent), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string folder = JoinPath(parent, PathText(entry->path().filename()));
        if (!IsNameOf(FileNameOf(folder), prefix) || !MayBeAbandoned(folder)) {
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

TemporaryFolder::TemporaryFolder() : TemporaryFolder(SystemTemporaryFolder(), std::string(NamePrefix)) {}

TemporaryFolder::TemporaryFolder(const std::string& shared) : TemporaryFolder(shared, PrefixOfThisMachine()) {}

TemporaryFolder::TemporaryFolder(const std::string& parent, const std::string& prefix) {
    // Before our own folder is made, which needs no look then.
    Sweep(parent, prefix);
    constexpr int MostAttempts = 100;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        path_ = JoinPath(parent, RandomName(prefix));
        RemoveWhenKilled(path_); // a kill right behind the making is covered too
        if (!MakePrivateFolder(path_)) {
            continue;
        }
        const LockFile::State state = lock_.Take(path_, LockKey);
        // Without locks nobody can take it for abandoned.
        if (state == LockFile::State::Held || state == LockFile::State::Unsupported) {
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
