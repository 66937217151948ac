#include "platform/LockFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/Paths.h"

#include <thread>

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

LockFile::State LockFile::Take(const std::string& path, std::chrono::milliseconds longest, const StopFlag& stop) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + longest;
    const std::string target = TargetIfKnown(path);
    const std::string folder(DirectoryOf(target));
    const std::string key = ComparablePath(FileNameOf(target));
    while (Take(folder, key) == State::HeldByOther && Clock::now() < end && !stop.IsSet()) {
        std::this_thread::sleep_for(LookInterval);
    }
    return state_;
}

std::string LockFile::FileName(const std::string& key) {
    return ".orvlock-" + std::to_string(Fnv1a(key));
}

} // namespace Orvanta
