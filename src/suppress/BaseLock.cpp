#include "suppress/BaseLock.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "report/Exceptions.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

namespace Orvanta {

namespace {

constexpr std::chrono::minutes LongestWait(2);
constexpr std::chrono::milliseconds LookInterval(20);

// The base behind links, whether it exists yet or not.
std::string ResolvedPath(const std::string& basePath) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(basePath, error);
    return error ? AbsolutePath(basePath) : resolved.string();
}

} // namespace

BaseLock::BaseLock(const std::string& basePath, const StopFlag& stop) {
    const std::string base = ResolvedPath(basePath);
    const std::string folder(DirectoryOf(base));
    path_ = JoinPath(folder, LockFile::FileName(base));
    const auto end = std::chrono::steady_clock::now() + LongestWait;
    while (lock_.Take(folder, base) == LockFile::State::HeldByOther) {
        if (stop.IsSet()) {
            throw OrvlogConverter::StoppedException();
        }
        if (std::chrono::steady_clock::now() > end) {
            throw ZelmException("Another run is still writing to " + basePath);
        }
        std::this_thread::sleep_for(LookInterval); // the holder's end wakes nobody
    }
}

BaseLock::~BaseLock() {
    if (lock_.CurrentState() == LockFile::State::Held) {
        RemoveFile(path_);
    }
}

} // namespace Orvanta
