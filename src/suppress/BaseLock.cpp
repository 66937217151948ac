#include "suppress/BaseLock.h"

#include "platform/Exceptions.h"
#include "report/Exceptions.h"

#include <chrono>

namespace Orvanta {

namespace {

constexpr std::chrono::minutes LongestWait(2);

} // namespace

BaseLock::BaseLock(const std::string& basePath, const StopFlag& stop) {
    if (lock_.Take(basePath, LongestWait, stop) == LockFile::State::HeldByOther) {
        if (stop.IsSet()) {
            throw OrvlogConverter::StoppedException();
        }
        throw ZelmException("Another run is still writing to " + basePath);
    }
}

BaseLock::~BaseLock() {
    lock_.ReleaseAndRemove();
}

} // namespace Orvanta
