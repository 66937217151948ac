#pragma once

// What ends children when this process can't: it was killed, or has crashed.
//
// On Linux a second process does, started with the first child from the same program. It reads from a pipe which
// process groups there are, one short record for each start and each end; when the pipe closes without a farewell, it
// kills the groups that are left and removes the run's temporary folder. On Windows the jobs of the children do the
// first, and the next run the second.
//
// Rejected: the signal that a parent's death can send. It goes out when the thread ends that has started the child,
// grandchildren never get it, and it can only be asked for between a fork and its exec.

#include <optional>
#include <string>

namespace Orvanta {

/// While it lives, children of this process are watched. One per process, made by the entry.
class ChildWatch {
public:
    ChildWatch() noexcept;
    /// Says farewell: every child has been waited for by then.
    ~ChildWatch(); // NOLINT(performance-trivially-destructible): only on Windows there is nothing to do
    ChildWatch(const ChildWatch&) = delete;
    ChildWatch& operator=(const ChildWatch&) = delete;
};

/// The exit code of this program where its words make it the watcher of another process, whose end it has then waited
/// for; absent for all other words. First thing in the entry.
[[nodiscard]] std::optional<int> WatchIfAsked(int argumentCount, const char* const* arguments);

/// The folder, which need not be there yet, is to go as well when this process is killed while it is watched.
void RemoveWhenKilled(const std::string& folder);

} // namespace Orvanta
