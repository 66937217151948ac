#pragma once

#include <sys/types.h>

namespace Orvanta {

// What the start and the end of a child tell its watcher. Nothing is told where this process is not watched, and what
// can't be told is not: a watcher that has gone must not stop a run.

/// Starts the watcher, once per process. Before a child is started: a kill in the middle of the start is covered too.
void StartWatcher() noexcept;

/// The standard input of watched children, by which the watcher knows one that was being started when this process was
/// killed: it is empty, and no other process has it. -1 when there is no watcher.
[[nodiscard]] int WatchedInput() noexcept;

/// Which processes are to end with a child when this one is killed.
enum class WatchedReach {
    Group,    ///< its process group
    Launcher, ///< what it has started elsewhere, too: it is asked before its group is killed
};

/// A child leads the process group of its own number.
void NoteStart(pid_t group, WatchedReach reach) noexcept;

/// It has ended, or its whole group was killed. To be told before its status is taken: its number is free after that.
void NoteEnd(pid_t group) noexcept;

} // namespace Orvanta
