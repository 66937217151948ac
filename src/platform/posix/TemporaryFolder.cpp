#include "platform/TemporaryFolder.h"

#include "platform/Environment.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

namespace {

constexpr std::string_view NamePrefix = "orvanta-analyzer-";
constexpr const char* LockKey = "temporary folder";
constexpr mode_t FolderMode = 0700;

// A folder without a lock file belongs to a run that is just starting, or died there: this old, it is no longer
// starting.
constexpr std::chrono::hours LongestStart{24};

std::string ParentFolder() {
    const std::string folder = EnvironmentVariable("TMPDIR").value_or("");
    return AbsolutePath(folder.empty() ? "/tmp" : folder);
}

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

bool MayBeAbandoned(const std::string& folder) {
    struct stat status {};

    if (::lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) {
        return false;
    }
    const auto changed = std::chrono::system_clock::from_time_t(status.st_mtime);
    return PathExists(JoinPath(folder, LockFile::FileName(LockKey))) ||
           std::chrono::system_clock::now() - changed > LongestStart;
}

void RemoveTree(const std::string& folder) noexcept {
    std::error_code ignored; // what can't be removed now, the next run tries again
    std::filesystem::remove_all(folder, ignored);
}

// Removes what killed runs have left. A run that starts meanwhile and loses its lock to us takes another folder.
void Sweep(const std::string& parent) {
    std::error_code error;
    std::filesystem::directory_iterator entry(parent, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string folder = entry->path().string();
        if (!FileNameOf(folder).starts_with(NamePrefix) || !MayBeAbandoned(folder)) {
            continue;
        }
        LockFile lock;
        if (lock.Take(folder, LockKey) == LockFile::State::Held) {
            RemoveTree(folder);
        }
    }
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    const std::string parent = ParentFolder();
    Sweep(parent);
    constexpr int MostAttempts = 100;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        path_ = JoinPath(parent, RandomName());
        if (::mkdir(path_.c_str(), FolderMode) != 0) {
            if (errno == EEXIST) {
                continue;
            }
            throw ZelmException("Couldn't make the temporary folder " + path_ + ": " + SystemReason(errno));
        }
        if (lock_.Take(path_, LockKey) == LockFile::State::Held) {
            return;
        }
        RemoveTree(path_); // another run swept it between the two calls, or it can't hold a lock
    }
    throw ZelmException("Couldn't lock a temporary folder in " + parent);
}

TemporaryFolder::~TemporaryFolder() {
    RemoveTree(path_);
}

} // namespace Orvanta
