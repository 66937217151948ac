#include "app/RunLocks.h"

#include "platform/Exceptions.h"

#include <chrono>

namespace Orvanta {

namespace {

// A run that was killed while it started a child leaves its locks to that child for a moment.
constexpr std::chrono::milliseconds LongestWait{200};

LockFile TakeOf(const std::string& path, const StopFlag& stop, Log& log, const char* fault) {
    LockFile lock;
    const LockFile::State state = lock.Take(path, LongestWait, stop);
    if (state == LockFile::State::HeldByOther) {
        throw ZelmException(fault + path);
    }
    if (state == LockFile::State::Unsupported) {
        log.Line("Note: the file system of " + path + " has no locks: let no two runs write there at a time");
    }
    return lock;
}

} // namespace

RunLocks::~RunLocks() {
    shared_.ReleaseAndRemove();
    report_.ReleaseAndRemove();
}

void RunLocks::TakeReport(const std::string& reportPath, const StopFlag& stop, Log& log) {
    report_ = TakeOf(reportPath, stop, log, "Another run is writing to ");
}

void RunLocks::TakeShared(const std::string& orvantaFolder, const StopFlag& stop, Log& log) {
    shared_ = TakeOf(orvantaFolder, stop, log, "Another run is using ");
}

} // namespace Orvanta
