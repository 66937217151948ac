#include "app/RunLocks.h"

#include "platform/Exceptions.h"

#include <chrono>

namespace Orvanta {

namespace {

// A run that was killed while it started a child leaves its locks to that child for a moment.
constexpr std::chrono::milliseconds LongestWait{200};

void Take(LockFile& lock, const std::string& path, const StopFlag& stop, const char* fault) {
    if (lock.Take(path, LongestWait, stop) == LockFile::State::HeldByOther) {
        throw ZelmException(fault + path);
    }
}

} // namespace

RunLocks::~RunLocks() {
    shared_.ReleaseAndRemove();
    report_.ReleaseAndRemove();
}

void RunLocks::TakeReport(const std::string& reportPath, const StopFlag& stop) {
    Take(report_, reportPath, stop, "Another run is writing to ");
}

void RunLocks::TakeShared(const std::string& orvantaFolder, const StopFlag& stop) {
    Take(shared_, orvantaFolder, stop, "Another run is using ");
}

} // namespace Orvanta
