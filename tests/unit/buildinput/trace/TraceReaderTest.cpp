#include "buildinput/trace/TraceReader.h"

#include "unit/buildinput/Collecting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace Orvanta {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// In the texts of a case "%" stands for the test's folder, which holds the sources a.c, sub/a.c, sub/b.c and some
/// compilers.
class TraceReaderTest : public testing::Test {
protected:
    TraceReaderTest() {
        for (const char* const source : {"a.c", "sub/a.c", "sub/b.c", "sub/deep/a.c"}) {
            (void)folder_.Write(source, "");
        }
        for (const char* const program : {"clang", "clang++", "ccache"}) {
            (void)MakeProgram(folder_, program);
        }
    }

    [[nodiscard]] std::string InFolder(std::string_view text) const {
        std::string filled;
        for (const char character : text) {
            filled += character == '%' ? folder_.Path() : std::string(1, character);
        }
        return filled;
    }

    /// What the collector got, as texts: "FOLDER: ARGUMENTS" of each unit, with "%" for the test's folder.
    std::vector<std::string> UnitsOf(std::string_view trace) {
        Collecting collecting;
        collecting.settings = settings_;
        collecting.log.OpenFile(folder_ / "log.txt");
        std::istringstream stream(InFolder(trace));
        failure_.clear();
        try {
            if (!ReadTrace(stream, "strace_out", collecting.collector)) {
                failure_ = "no trace";
            }
        } catch (const ZelmException& error) {
            failure_ = error.what();
        }
        collected_ = collecting.collector.Take();
        std::vector<std::string> units;
        for (const CompileCommand& unit : collected_.units) {
            std::string text = *unit.absoluteDirectory + ":";
            for (const std::string& argument : unit.arguments.ToVector()) {
                text += ' ' + argument;
            }
            for (std::size_t at = text.find(folder_.Path()); at != std::string::npos; at = text.find(folder_.Path())) {
                text.replace(at, folder_.Path().size(), "%");
            }
            units.push_back(std::move(text));
        }
        return units;
    }

    [[nodiscard]] std::string Messages() const { return folder_.Read("log.txt"); }

    TestFolder folder_;
    RunSettings settings_;
    CollectedCommands collected_;
    std::string failure_;
};

struct TraceCase {
    const char* name;
    const char* trace;
    std::vector<std::string> units;
};

void ExpectUnits(const TraceCase& row, const std::vector<std::string>& units, const std::string& failure) {
    EXPECT_EQ(units, row.units) << row.name;
    EXPECT_EQ(failure, "") << row.name;
}

const std::vector<std::string> AInFolder = {"%: %/clang -c a.c"};
const std::vector<std::string> AInSub = {"%/sub: %/clang -c a.c"};

// Texts of several lines can't be aligned.
// clang-format off
const TraceCase Directories[] = {
    {"VariableOfTheFirstProcess", R"(1  execve("/bin/make", ["make"], ["A=1", "PWD=%/sub"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 3 vars */) = 0
)", AInSub},
    {"WhatTheSystemSaysWinsOverTheVariable", R"(1  execve("/bin/make", ["make"], ["PWD=/gone"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 3 vars */) = 0
2  getcwd("%/sub", 4096) = 9
)", AInSub},
    {"FollowsRelativeChangesAndIgnoresFailedOnes", R"(1  execve("/bin/sh", ["sh"], ["PWD=/"]) = 0
1  chdir("%") = 0
1  chdir("none") = -1 ENOENT (No such file or directory)
1  vfork( <unfinished ...>
2  chdir("sub/deep") = 0
2  chdir("..") = 0
2  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
1  <... vfork resumed>) = 2
)", AInSub},
    {"ChildIsSeenBeforeItsStart", R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  chdir("sub") = 0
1  clone3({flags=CLONE_VM|CLONE_VFORK, exit_signal=SIGCHLD}, 88 <unfinished ...>
2  execve("%/clang", ["clang", "-c", "a.c"], ["PWD=/stale"] <unfinished ...>
2  <... execve resumed>) = 0
2  +++ exited with 0 +++
1  <... clone3 resumed>) = 2
1  vfork( <unfinished ...>
3  +++ exited with 0 +++
1  <... vfork resumed>) = 3
)", AInSub},
    {"ChildOfAChildThatIsSeenBeforeItsStart", R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  clone(child_stack=NULL, flags=SIGCHLD <unfinished ...>
2  chdir("sub") = 0
2  vfork( <unfinished ...>
3  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
2  <... vfork resumed>) = 3
3  +++ exited with 0 +++
2  +++ exited with 0 +++
1  <... clone resumed>, child_tidptr=0x7f) = 2
)", AInSub},
    {"ChangeByAFileWithItsPath", R"(1  execve("/bin/sh", ["sh"], []) = 0
1  fchdir(3<%/sub>) = 0
1  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInSub},
    {"ChangeByAnOpenedFile", R"(1  execve("/bin/sh", ["sh"], ["PWD=%"]) = 0
1  openat(AT_FDCWD, "sub", O_RDONLY|O_DIRECTORY) = 3
1  openat(3, "deep", O_RDONLY|O_CLOEXEC) = 4
1  open("a.c", O_WRONLY|O_CREAT, 0666) = 3
1  open("sub", O_RDONLY <unfinished ...>
1  <... open resumed>) = 5
1  chdir("/") = 0
1  fork() = 2
2  fchdir(4) = 0
2  fchdir(5) = 0
2  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInSub},
    {"PathOfTheDirectoryInAnyCall", R"(1  execve("/bin/sh", ["sh"], 0x7f /* 9 vars */) = 0
1  openat(AT_FDCWD<%/sub>, "/etc/ld.so.cache", O_RDONLY|O_CLOEXEC) = 3</etc/ld.so.cache>
1  execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 9 vars */) = 0
)", AInSub},
    {"ThreadsShareIt", R"(1  execve("/bin/ninja", ["ninja"], ["PWD=/"]) = 0
1  clone3({flags=CLONE_VM|CLONE_FS|CLONE_FILES|CLONE_THREAD}, 88 <unfinished ...>
2  openat(AT_FDCWD, "/etc/x", O_RDONLY) = 3
1  <... clone3 resumed>) = 2
2  chdir("%/sub") = 0
1  vfork() = 3
3  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInSub},
    {"NumbersAreUsedAgain", R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  vfork() = 2
2  chdir("/") = 0
2  +++ exited with 0 +++
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
2  +++ killed by SIGKILL +++
1  vfork( <unfinished ...>
2  chdir("sub") = 0
2  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
1  <... vfork resumed>) = 2
)", {"%: %/clang -c a.c", "%/sub: %/clang -c a.c"}},
    {"ThreadThatExecutesBecomesItsProcess", R"(1  execve("/bin/x", ["x"], ["PWD=%"]) = 0
1  clone3({flags=CLONE_VM|CLONE_FS|CLONE_FILES|CLONE_THREAD}, 88) = 2
2  chdir("sub") = 0
2  execve("%/clang", ["clang", "-c", "a.c"], [] <pid changed to 1 ...>
1  +++ superseded by execve in pid 2 +++
1  <... execve resumed>) = 0
)", AInSub},
};

// clang-format on

TEST_F(TraceReaderTest, FindsTheDirectoryOfACompiler) {
    for (const TraceCase& row : Directories) {
        ExpectUnits(row, UnitsOf(row.trace), failure_);
        EXPECT_THAT(Messages(), testing::Not(HasSubstr("never started"))) << row.name;
    }
}

// Texts of several lines can't be aligned.
// clang-format off
const TraceCase Forms[] = {
    {"LogOfATerminal", R"(execve("/bin/make", ["make"], ["PWD=%"]) = 0
clone3({flags=CLONE_VM|CLONE_VFORK}, 88strace: Process 2 attached
 <unfinished ...>
[pid     2] execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 9 vars */ <unfinished ...>
[pid     1] <... clone3 resumed>)        = 2
[pid     2] <... execve resumed>)        = 0
a.c:1: warning: some text of the compiler's own (here)
[pid     2] +++ exited with 0 +++
chdir("sub") = 0
clone(child_stack=NULL, flags=SIGCHLDstrace: Process 3 attached
, child_tidptr=0x7f) = 3
[pid     1] wait4(-1,  <unfinished ...>
[pid     3] execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 9 vars */) = 0
[pid     3] +++ exited with 0 +++
<... wait4 resumed>) = 3
+++ exited with 0 +++
)", {"%: %/clang -c a.c", "%/sub: %/clang -c a.c"}},
    {"NumberIsToldLate", R"(10:20:30 execve("/bin/make", ["make"], ["PWD=%"]) = 0
10:20:30 vfork() = 2
[pid     2] 10:20:31 execve("%/clang", ["clang", "-c", "a.c"], []) = 0
[pid     1] 10:20:31 chdir("sub") = 0
[pid     1] 10:20:31 vfork() = 3
[pid     3] 10:20:31 execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", {"%: %/clang -c a.c", "%/sub: %/clang -c a.c"}},
    {"OnlyOneProcess", R"(execve("%/clang", ["clang", "-c", "a.c"], ["PWD=%"]) = 0 <0.000123>
+++ exited with 0 +++
)", AInFolder},
    {"MergedFiles", R"(1 10:20:30.000001 execve("/bin/make", ["make"], ["PWD=%"]) = 0
1 10:20:30.000002 vfork() = 2
1 10:20:30.000003 chdir("sub") = 0
2 10:20:30.000003 execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInFolder},
    {"EscapesAndNames", R"(1<\x> (+     0.01) execve("%/\x63\154ang", ["cl"..., "-c", "\141.c", "-DX=\"\t\\"], ["PWD=%"]) = 0
)", {"%: %/clang -c a.c -DX=\"\t\\"}},
    {"ByAFolderAndAName", R"(1  execve("/bin/sh", ["sh"], ["PWD=%/sub"]) = 0
1  execveat(5<%>, "clang", ["clang", "-c", "a.c"], [], 0) = 0
)", AInSub},
};

// clang-format on

TEST_F(TraceReaderTest, ReadsEveryFormOfATrace) {
    for (const TraceCase& row : Forms) {
        ExpectUnits(row, UnitsOf(row.trace), failure_);
    }
}

constexpr const char* CacheMiss = R"(1  execve("%/ccache", ["ccache", "clang", "-c", "a.c"], ["PWD=%"]) = 0
1  vfork( <unfinished ...>
2  execve("%/clang", ["clang", "-E", "a.c"], []) = 0
1  <... vfork resumed>) = 2
2  +++ exited with 0 +++
1  vfork( <unfinished ...>
3  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
1  <... vfork resumed>) = 3
3  +++ exited with 0 +++
1  +++ exited with 0 +++
)";

// Texts of several lines can't be aligned.
// clang-format off
const TraceCase Commands[] = {
    {"CompilerWithinACompiler", R"(1  execve("%/clang", ["clang", "-c", "a.c"], ["PWD=%"]) = 0
1  vfork( <unfinished ...>
2  execve("%/clang", ["clang", "-cc1", "a.c"], []) = 0
2  vfork() = 3
3  execve("%/clang", ["clang", "-c", "sub/a.c"], []) = 0
1  <... vfork resumed>) = 2
)", AInFolder},
    {"PassOfADriverThatIsNotListed", R"(1  execve("%/clang-14", ["clang-14", "-c", "a.c"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-cc1", "-emit-obj", "sub/a.c"], []) = 0
1  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInFolder},
    {"CompilerThatGoesOnAsAnother", R"(1  execve("%/clang++", ["clang++", "-c", "a.c"], ["PWD=%"]) = 0
1  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", {"%: %/clang++ -c a.c"}},
    {"FailedTriesAlongTheSearchPath", R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  execve("/none/clang", ["clang", "-c", "a.c"], []) = -1 ENOENT (No such file or directory)
1  execve("%/clang", ["clang", "-c", "a.c", "-DX== -1 E"], []) = 0
)", {"%: %/clang -c a.c -DX== -1 E"}},
    {"DynamicLoader", R"(1  execve("/lib64/ld-linux-x86-64.so.2", ["ld.so", "--library-path", "/x", "--argv0", "y", "--inhibit-cache", )"
     R"("--preload=z", "--list", "--verify", "--inhibit-rpath", "1", "--audit", "2", "--rpath-prefix", "3", )"
     R"("--nodefaultdirs", "%/clang", "-c", "a.c"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("/lib/ld.so", ["ld.so", "--list"], []) = 0
2  execve("/lib/ld-musl-x86_64.so.1", ["ld.so", "/bin/true"], []) = 0
)", AInFolder},
    {"LauncherOfCompilations", R"(1  execve("/bin/distcc", ["distcc", "%/clang", "-c", "a.c"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)", AInFolder},
    {"CacheMissCountsOnce", CacheMiss, AInFolder},
    {"CacheThatGoesOnAsTheCompiler", R"(1  execve("%/ccache", ["ccache", "clang", "-c", "a.c"], ["PWD=%"]) = 0
1  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
1  +++ exited with 0 +++
)", AInFolder},
};

// clang-format on

TEST_F(TraceReaderTest, FindsEveryCompilationOnce) {
    for (const TraceCase& row : Commands) {
        ExpectUnits(row, UnitsOf(row.trace), failure_);
        for (const SkippedInvocation& skipped : collected_.skipped) {
            EXPECT_EQ(skipped.fate, InvocationFate::NotACompilation) << row.name << ": " << skipped.what;
        }
    }
}

constexpr const char* CacheHit = R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("%/ccache", ["ccache", "%/clang", "-c", "a.c"], []) = 0
2  +++ exited with 0 +++
1  vfork() = 3
3  execve("%/ccache", ["ccache", "--version"], []) = 0
)";

TEST_F(TraceReaderTest, TellsOfACacheHitAndAnalyzesItOnDemand) {
    EXPECT_THAT(UnitsOf(CacheHit), IsEmpty());
    ASSERT_EQ(collected_.skipped.size(), 1U);
    EXPECT_EQ(collected_.skipped[0].fate, InvocationFate::SkippedLauncher);

    settings_.ignoreCcache = true;
    EXPECT_EQ(UnitsOf(CacheHit), AInFolder);
    EXPECT_THAT(UnitsOf(CacheMiss), ElementsAre("%: clang -c a.c"));
    EXPECT_TRUE(collected_.units[0].wrapped);
}

TEST_F(TraceReaderTest, CountsOnlyListedNamesAsCompilers) {
    (void)MakeProgram(folder_, "my-clang");
    const char* const trace = R"(1  execve("%/my-clang", ["clang", "-c", "a.c"], ["PWD=%"]) = 0
)";
    EXPECT_THAT(UnitsOf(trace), IsEmpty());
    EXPECT_EQ(failure_, "No compiler invocations were detected.");
    settings_.compilerNames.emplace_back("MY-CLANG.exe");
    EXPECT_THAT(UnitsOf(trace), ElementsAre("%: %/my-clang -c a.c"));
}

TEST_F(TraceReaderTest, TakesOverAnEnvironmentThatIsShownWhole) {
    (void)UnitsOf(R"(1  execve("/bin/sh", ["sh"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c"], ["A=1", "A=2", "B-C=3", "D=x=\"\303\244\"", "E"]) = 0
1  vfork() = 3
3  execve("%/clang", ["clang", "-c", "a.c"], ["A=1", "B=2"...]) = 0
1  vfork() = 4
4  execve("%/clang", ["clang", "-c", "a.c"], 0x7f /* 12 vars */) = 0
1  vfork() = 5
5  execve("%/clang", ["clang", "-c", "a.c"], ["A=1", ...]) = 0
1  vfork() = 6
6  execve("%/clang", ["clang", "-c", "a.c"], []) = 0
)");
    ASSERT_EQ(collected_.units.size(), 5U) << failure_;
    const Environment expected = {{"A", "1"}, {"D", "x=\"\xC3\xA4\""}};
    EXPECT_EQ(*collected_.units[0].environment, expected);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(collected_.units[i].environmentScope == EnvironmentScope::Whole, i == 0 || i == 4) << i;
        EXPECT_EQ(collected_.units[i].environment->empty(), i != 0) << i;
    }
}

TEST_F(TraceReaderTest, NamesWhatIsCutOrDeleted) {
    EXPECT_THAT(UnitsOf(R"(1  execve("/bin/make", ["make"], ["PWD=%"]) = 0
1  vfork() = 2
2  execve("%/clang", ["clang", "-c", "a.c", "-Isome/long"...], []) = 0
1  vfork() = 3
3  execve("%/clang", ["clang", "-c", "conftest.c", "-o", "conftest.o"], []) = 0
1  vfork() = 4
4  execve("%/clang", ["clang", "-c", "a.c", ...], []) = 0
1  vfork() = 5
5  execve("%/clang", ["cla"..., "-c", "a.c", "gone.c"], []) = 0
)"),
                ElementsAre("%: %/clang -c a.c gone.c", "%: %/clang -c a.c gone.c"));
    ASSERT_EQ(collected_.skipped.size(), 3U);
    EXPECT_EQ(collected_.skipped[0].fate, InvocationFate::Unreadable);
    EXPECT_EQ(collected_.skipped[0].what, "a.c");
    EXPECT_THAT(collected_.skipped[0].reason, HasSubstr("line 3 of the trace"));
    EXPECT_THAT(collected_.skipped[0].reason, HasSubstr("-s 1048576"));
    EXPECT_EQ(collected_.skipped[1].fate, InvocationFate::DeletedSinceTrace);
    EXPECT_EQ(collected_.skipped[1].what, "conftest.c");
    EXPECT_EQ(collected_.skipped[2].fate, InvocationFate::Unreadable);
}

struct FailureCase {
    const char* trace;
    const char* failure;
    const char* message;
};

TEST_F(TraceReaderTest, EndsWithAClearErrorWhenThereIsNothingToRead) {
    const FailureCase rows[] = {
        {"", "No roots found", ""},
        {"1  <... wait4 resumed>) = 3\n", "No roots found", ""},
        {"1  +++ exited with 0 +++\n", "No roots found", "Process 1 at line 1 was never started\n"},
        {"[{\"directory\": \"/\"}]\n", "no trace", ""},
        {"\n", "no trace", ""},
        {R"(1  execve("/bin/true", ["true"], []) = 0)", "No compiler invocations were detected.", ""},
        {R"(1  execve("%/clang", ["clang", "-c", "a.c"], 0x7f) = 0)", "No pwd", "--trace-dir"},
        {R"(1  execve("%/clang", ["clang", "-c", "a.c"], ["PWD=x"]) = 0)", "No pwd", "process 1 ran at line 1: "},
        {R"(1  execve("%/clang", ["clang", "-c", "a.c"], ["PWD=%"])", "",
         "strace_out, line 1: this call is cut short\n"},
        {R"(1  execve("%/clang", ["clang", "-c" "a.c"], ["PWD=%"]) = 0)", "",
         "strace_out, line 1: this call can't be read\n"},
    };
    for (const FailureCase& row : rows) {
        EXPECT_THAT(UnitsOf(row.trace), IsEmpty()) << row.trace;
        EXPECT_EQ(failure_, row.failure) << row.trace;
        EXPECT_THAT(Messages(), HasSubstr(row.message)) << row.trace;
    }
}

TEST_F(TraceReaderTest, TakesTheUsersFolderWhereTheTraceTellsNone) {
    settings_.traceDirectory = folder_ / "sub";
    EXPECT_EQ(UnitsOf("1  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\"], 0x7f) = 0\n"), AInSub);
    EXPECT_EQ(UnitsOf("1  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\"], [\"PWD=%\"]) = 0\n"), AInFolder);
}

TEST_F(TraceReaderTest, TellsOfProcessesWithoutAStart) {
    EXPECT_THAT(UnitsOf(R"(7  execve("/bin/make", ["make"], ["PWD=%"]) = 0
8  execve("%/clang", ["clang", "-c", "a.c"], ["PWD=%/sub"]) = 0
9  +++ exited with 0 +++
)"),
                ElementsAre("%/sub: %/clang -c a.c"));
    EXPECT_THAT(Messages(),
                HasSubstr("Process 8 at line 2 was never started\nProcess 9 at line 3 was never started\n"));
}

TEST_F(TraceReaderTest, KeepsTheOrderOfManyThatWait) {
    std::string trace = "1  execve(\"/bin/make\", [\"make\"], [\"PWD=%\"]) = 0\n";
    const int count = 3000;
    for (int i = 2; i < count + 2; ++i) {
        const std::string id = std::to_string(i);
        trace += "1  vfork() = " + id + "\n";
        trace += id + "  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\", \"-D" + id + "\"], 0x7f) = 0\n";
    }
    const std::vector<std::string> units = UnitsOf(trace);
    ASSERT_EQ(units.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(units[static_cast<std::size_t>(i)], "%: %/clang -c a.c -D" + std::to_string(i + 2));
    }
}

} // namespace

// A compiler has run, but the trace doesn't show how: its invocation counts as failed.
TEST_F(TraceReaderTest, CountsACompilersCallThatItCannotRead) {
    const char* const traces[] = {
        "1  execve(\"%/clang\", 0x7ffe /* 3 args */, 0x7fff /* 20 vars */) = 0\n",
        "1  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c",
        "1  execve(\"%/clang\", [\"clang\", hello from another program\n",
    };
    for (const char* const trace : traces) {
        EXPECT_THAT(UnitsOf(std::string("1  getcwd(\"%\", 4096) = 9\n") + trace), IsEmpty()) << trace;
        ASSERT_EQ(collected_.skipped.size(), 1U) << trace;
        EXPECT_EQ(collected_.skipped[0].fate, InvocationFate::Unreadable);
        EXPECT_THAT(collected_.skipped[0].reason, HasSubstr("line 2 of the trace: this call"));
    }
}

TEST_F(TraceReaderTest, TellsStepsWhoseResponseFileIsGone) {
    EXPECT_THAT(UnitsOf("1  execve(\"%/clang\", [\"clang\", \"@objects.rsp\", \"-o\", \"a\"], [\"PWD=%\"]) = 0\n"
                        "2  execve(\"%/clang\", [\"clang\", \"-c\", \"@gone.rsp\"], [\"PWD=%\"]) = 0\n"),
                IsEmpty());
    ASSERT_EQ(collected_.skipped.size(), 2U);
    EXPECT_EQ(collected_.skipped[0].fate, InvocationFate::NotACompilation);
    EXPECT_EQ(collected_.skipped[0].reason, "link only");
    EXPECT_EQ(collected_.skipped[1].fate, InvocationFate::Unreadable);
    EXPECT_THAT(collected_.skipped[1].reason, HasSubstr("gone.rsp"));
}

TEST_F(TraceReaderTest, NamesWhatLooksLikeACompilerAndIsNotListed) {
    (void)UnitsOf("1  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\"], [\"PWD=%\"]) = 0\n"
                  "1  vfork() = 2\n"
                  "2  execve(\"/bin/gcc-9\", [\"gcc-9\"], []) = 0\n"
                  "3  execve(\"/bin/gcc-12\", [\"gcc-12\"], []) = 0\n"
                  "4  execve(\"/x/riscv64-linux-gnu-g++\", [\"g++\"], []) = 0\n"
                  "5  execve(\"/bin/gcc-12\", [\"gcc-12\"], []) = 0\n"
                  "6  execve(\"/bin/gcc-ar\", [\"gcc-ar\"], []) = 0\n");
    EXPECT_THAT(Messages(), HasSubstr("3 calls of programs that look like compilers are passed over (gcc-12, "
                                      "riscv64-linux-gnu-g++): -C NAME has them read"));
}

// Each process is started by the one before, whose call has not returned yet: chains as long as the trace.
TEST_F(TraceReaderTest, ReadsDeeplyNestedStarts) {
    constexpr int Depth = 60000;
    std::string trace = "1  getcwd(\"%\", 4096) = 9\n";
    for (int process = 1; process <= Depth; ++process) {
        trace += std::to_string(process) + "  vfork( <unfinished ...>\n";
    }
    trace += std::to_string(Depth + 1) + "  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\"], []) = 0\n";
    for (int process = Depth; process >= 1; --process) {
        trace += std::to_string(process) + "  <... vfork resumed>) = " + std::to_string(process + 1) + "\n";
    }
    EXPECT_EQ(UnitsOf(trace), AInFolder);

    trace = "1  getcwd(\"%\", 4096) = 9\n";
    for (int launcher = 0; launcher < Depth; ++launcher) {
        trace += "1  execve(\"%/ccache\", [\"ccache\", \"gcc\", \"-c\", \"a.c\"], []) = 0\n";
    }
    EXPECT_EQ(UnitsOf(trace + "1  execve(\"%/clang\", [\"clang\", \"-c\", \"a.c\"], []) = 0\n"), AInFolder);
}

} // namespace Orvanta
