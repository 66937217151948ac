#include "buildinput/trace/TraceLine.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

using Kind = TraceLine::Kind;

struct LineCase {
    const char* line;
    std::optional<ProcessId> process;
    Kind kind;
    TraceCall call;
    const char* text;
    bool isUnfinished = false;
};

// The same call behind every kind of column, and every kind of line.
const LineCase Lines[] = {
    {"12  chdir(\"a\") = 0", 12, Kind::Call, TraceCall::ChangeDirectory, "\"a\") = 0"},
    {"chdir(\"a\") = 0", std::nullopt, Kind::Call, TraceCall::ChangeDirectory, "\"a\") = 0"},
    {"[pid    12] chdir(\"a\") = 0", 12, Kind::Call, TraceCall::ChangeDirectory, "\"a\") = 0"},
    {"[pid 12<make>] chdir(\"a\") = 0", 12, Kind::Call, TraceCall::ChangeDirectory, "\"a\") = 0"},
    {"12<a b> 10:20:30 fchdir(3) = 0", 12, Kind::Call, TraceCall::ChangeDirectoryFile, "3) = 0"},
    {"10:20:30.123456 vfork() = 7", std::nullopt, Kind::Call, TraceCall::Fork, ") = 7"},
    {"12  1763985003.602482 fork() = 7 <0.000123>", 12, Kind::Call, TraceCall::Fork, ") = 7 <0.000123>"},
    {"     0.000123 clone(flags=0) = 7", std::nullopt, Kind::Call, TraceCall::Fork, "flags=0) = 7"},
    {"12 10:20:30 (+     0.01) [  59] [00007fc3cddf] execve(\"", 12, Kind::Call, TraceCall::Execute, "\""},
    {"12 10:20:30 [????????????????] +++ exited with 0 +++", 12, Kind::End, TraceCall::Other, ""},
    {"[pid 12] +++ killed by SIGSEGV (core dumped) +++", 12, Kind::End, TraceCall::Other, ""},
    {"12  +++ superseded by execve in pid 13 +++", 12, Kind::Replacement, TraceCall::Other, ""},
    {"12  vfork( <unfinished ...>", 12, Kind::Call, TraceCall::Fork, " ", true},
    {"12  execve(\"a\", [], 0x7f <pid changed to 10 ...>", 12, Kind::Call, TraceCall::Execute, "\"a\", [], 0x7f ",
     true},
    {"clone3({flags=0}, 88strace: Process 8 attached", std::nullopt, Kind::Call, TraceCall::Fork, "{flags=0}, 88",
     true},
    {"12  fork( <detached ...>", 12, Kind::Call, TraceCall::Fork, " ", true},
    {"12  <... clone3 resumed> => {parent_tid=[8]}, 88) = 8", 12, Kind::Resumption, TraceCall::Fork,
     " => {parent_tid=[8]}, 88) = 8"},
    {"12  <... execve resumed>) = 0", 12, Kind::Resumption, TraceCall::Execute, ") = 0"},
    {"12  <... wait4 resumed>) = 8", 12, Kind::Resumption, TraceCall::Other, ") = 8"},
    {"12  --- SIGCHLD {si_signo=SIGCHLD} ---", 12, Kind::Event, TraceCall::Other, ""},
    {"12  exit_group(0) = ?", 12, Kind::Call, TraceCall::Other, ""},
    {" <unfinished ...>", std::nullopt, Kind::LooseEnd, TraceCall::Other, " ", true},
    {", child_tidptr=0x7f) = 8", std::nullopt, Kind::LooseEnd, TraceCall::Other, ", child_tidptr=0x7f) = 8"},
    {"12 warnings generated.", 12, Kind::Other, TraceCall::Other, ""},
    {"12", std::nullopt, Kind::LooseEnd, TraceCall::Other, "12"},
    {"99999999999 chdir(\"a\") = 0", std::nullopt, Kind::Call, TraceCall::ChangeDirectory, "\"a\") = 0"},
    {"[pid 12", std::nullopt, Kind::LooseEnd, TraceCall::Other, "[pid 12"},
    {"12<a", std::nullopt, Kind::LooseEnd, TraceCall::Other, "12<a"},
    {"", std::nullopt, Kind::LooseEnd, TraceCall::Other, ""},
};

TEST(TraceLine, IsReadInEveryFormThatTheTracerWrites) {
    for (const LineCase& row : Lines) {
        const TraceLine line = ParseTraceLine(row.line);
        EXPECT_EQ(line.process, row.process) << row.line;
        EXPECT_EQ(line.kind, row.kind) << row.line;
        EXPECT_EQ(line.call, row.call) << row.line;
        EXPECT_EQ(line.text, row.text) << row.line;
        EXPECT_EQ(line.isUnfinished, row.isUnfinished) << row.line;
    }
}

} // namespace

} // namespace Orvanta
