#include "suppress/BaseLock.h"

#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"
#include "report/Exceptions.h"

#include <chrono>
#include <optional>

namespace Orvanta {

namespace {

// Several jobs of one build may add to one base, one after the other.
constexpr std::chrono::minutes LongestWait(2);

} // namespace

BaseLock::BaseLock(const std::string& basePath, const StopFlag& stop) {
    using State = LockFile::State;
    // The lock by the path first: most bases have one name, and need no other.
    State state = lock_.Take(LockPlaceOf(basePath), LongestWait, stop);
    if (state == State::Held) {
        if (const std::optional<FileIdentity> base = IdentityOf(basePath); base && base->names > 1) {
            // By what the file is, in a folder that all who know it by any name share.
            const std::string name = "base-" + std::to_string(base->device) + "-" + std::to_string(base->number);
            state = sharedLock_.Take({SystemTemporaryFolder(), name}, LongestWait, stop);
        }
    }
    if (state == State::HeldByOther) {
        // A stop ends the wait: then it is not the other run's fault.
        if (stop.IsSet()) {
            throw OrvlogConverter::StoppedException();
        }
        throw ZelmException("Another run is still writing to " + basePath);
    }
    if (state == State::Unsupported) {
        PrintLine("Note: the file system of " + basePath + " has no locks: let no two runs add to it at a time");
    }
}

BaseLock::~BaseLock() {
    // In the reverse order of taking them.
    sharedLock_.ReleaseAndRemove();
    lock_.ReleaseAndRemove();
}

} // namespace Orvanta
