#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// What the kinds of lines look like:
//
//     123 execve("/usr/bin/cc", ["cc", "-c", "a.c"], 0x7ffc /* 20 vars */) = 0    a Call
//     123 vfork( <unfinished ...>                                                 the first part of a Call
//     124 chdir("lib") = 0                                                        a Call of another process in between
//     123 <... vfork resumed>) = 124                                              a Resumption
//     123 --- SIGCHLD {si_signo=SIGCHLD, ...} ---                                 an Event
//     124 +++ exited with 0 +++                                                   an End
//     123 +++ superseded by execve in pid 125 +++                                 a Replacement
//
// A line is told by its beginning, and by its end where it is cut: the millions of lines of other calls are passed over
// without a look at what stands between.

namespace Orvanta {

using ProcessId = std::uint32_t;

/// The system calls that tell what a build starts, and where.
enum class TraceCall : std::uint8_t {
    Other,
    Execute,             ///< execve
    ExecuteAt,           ///< execveat
    Fork,                ///< fork, vfork and the kinds of clone
    ChangeDirectory,     ///< chdir
    ChangeDirectoryFile, ///< fchdir
    GetDirectory,        ///< getcwd
    Open,                ///< open
    OpenAt,              ///< openat, openat2
};

/// One line of a process trace, as far as it can be told without its neighbours.
struct TraceLine {
    enum class Kind : std::uint8_t {
        Other,       ///< nothing that a trace says, or nothing that matters
        Event,       ///< something that a trace says, but that does not matter: a signal
        Call,        ///< a call, or the first part of one
        Resumption,  ///< the last part of a call
        End,         ///< the process is gone
        Replacement, ///< the process goes on as what was its thread `otherProcess`, which has executed a program
        LooseEnd,    ///< what follows a call that a message of the tracer's own has interrupted
    };

    std::optional<ProcessId> process; ///< absent where the line names none
    Kind kind = Kind::Other;
    TraceCall call = TraceCall::Other; ///< of a Call and of a Resumption
    bool isUnfinished = false;         ///< only the first part of a Call
    ProcessId otherProcess = 0;
    std::string_view text =
        {}; ///< of a Call: from the arguments on; of a Resumption and a LooseEnd: what goes on there
};

/// Reads one line in the form that strace writes: with the process in front ("123 ", "[pid 123] ") or not, and with any
/// of its time stamps and other columns.
[[nodiscard]] TraceLine ParseTraceLine(std::string_view line);

} // namespace Orvanta
