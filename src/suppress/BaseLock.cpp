#include "suppress/BaseLock.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "report/Exceptions.h"

#include <chrono>
#include <thread>

namespace Orvanta {

namespace {

constexpr std::chrono::minutes LongestWait(2);
constexpr std::chrono::milliseconds LookInterval(20);

// The base behind links, whether it exists yet or not.
std::string ResolvedPath(const std::string& basePath) {
    const std::string path = AbsolutePath(basePath);
    return PathExists(path) ? ResolveLinks(path)
                            : JoinPath(ResolveLinks(std::string(DirectoryOf(path))), FileNameOf(path));
}

} // namespace

BaseLock::BaseLock(const std::string& basePath, const StopFlag& stop) {
    const std::string base = ResolvedPath(basePath);
    const std::string folder(DirectoryOf(base));
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
    lock_.ReleaseAndRemove();
}

} // namespace Orvanta
