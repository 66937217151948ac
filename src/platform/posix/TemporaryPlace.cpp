#include "platform/TemporaryPlace.h"

#include "platform/Environment.h"
#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "platform/posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

namespace {

// For this user alone: preprocessed sources lie in it.
constexpr mode_t FolderMode = 0700;
constexpr std::chrono::hours OldAge{24};

} // namespace

std::string SystemTemporaryFolder() {
    const std::string folder = EnvironmentVariable("TMPDIR").value_or("");
    return AbsolutePath(folder.empty() ? "/tmp" : folder);
}

std::string HostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : std::string();
}

bool MakePrivateFolder(const std::string& path) {
    if (::mkdir(path.c_str(), FolderMode) == 0) {
        return true;
    }
    // A name that is taken is for the caller to change; all else would fail again.
    if (errno != EEXIST) {
        throw FileException("Couldn't make the temporary folder", path, SystemReason(errno));
    }
    return false;
}

FolderState LookAtFolder(const std::string& path) {
    struct stat status {};

    // The folder of all users is open to all: what another one has made there is left alone.
    if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid()) {
        return FolderState::NotOurs;
    }
    const auto changed = std::chrono::system_clock::from_time_t(status.st_mtime);
    return std::chrono::system_clock::now() - changed > OldAge ? FolderState::Old : FolderState::Fresh;
}

void RemoveTree(const std::string& folder) noexcept {
    std::error_code ignored; // what can't be removed now, the next run tries again
    std::filesystem::remove_all(folder, ignored);
}

} // namespace Orvanta
