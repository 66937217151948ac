#include "app/RunLocks.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <chrono>
#include <thread>

namespace Orvanta {

namespace {

// False when another run holds the lock. A run that was killed while it started a child leaves its locks to that child
// for a moment.
bool TakeSoon(LockFile& lock, const std::string& folder, const std::string& key) {
    constexpr int Attempts = 10;
    for (int attempt = 0; lock.Take(folder, key) == LockFile::State::HeldByOther; ++attempt) {
        if (attempt == Attempts) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

bool TakeOf(LockFile& lock, const std::string& path) {
    const std::string real = ResolveLinks(path);
    return TakeSoon(lock, std::string(DirectoryOf(real)), ComparablePath(FileNameOf(real)));
}

} // namespace

void RunLocks::TakeReport(const std::string& reportPath) {
    if (!TakeOf(report_, reportPath)) {
        throw ZelmException("Another run is writing to " + reportPath);
    }
}

void RunLocks::TakeOutputOf(const std::string& folder) {
    if (!TakeSoon(report_, folder, "")) {
        throw ZelmException("Another run is writing to " + folder);
    }
}

void RunLocks::TakeShared(const std::string& orvantaFolder) {
    if (!TakeOf(shared_, orvantaFolder)) {
        throw ZelmException("Another run is using " + orvantaFolder);
    }
}

} // namespace Orvanta
