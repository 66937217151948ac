#pragma once

#include <memory>

namespace Orvanta {

/// The file that a crash leaves in the current directory.
inline constexpr const char* CrashReportFileName = "orvanta-analyzer.stacktrace.txt";

/// From now on a crash of this process (a fatal signal, abort, terminate) writes the crashed thread's stack to
/// `CrashReportFileName` and says where to send it; where the file can't be written, the stack goes to standard output.
/// The process then ends as it would have without. First thing in the entry, once per process; aborts the process when
/// the handling thread can't be started.
void InstallCrashHandler();

/// Room in which an overflow of a thread's stack is handled, for as long as this lives: without it, such a crash leaves
/// no trace. `InstallCrashHandler` makes it for the main thread; the first thing on every other one of ours.
class ThreadCrashRoom {
public:
    /// For the calling thread, which must also be the one that destroys it. Where the system gives no room, the thread
    /// goes on without.
    ThreadCrashRoom();
    ~ThreadCrashRoom();
    ThreadCrashRoom(const ThreadCrashRoom&) = delete;
    ThreadCrashRoom& operator=(const ThreadCrashRoom&) = delete;

private:
    std::shared_ptr<void> room_; // as the system needs it
};

} // namespace Orvanta
