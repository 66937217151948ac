// Guards against limits of the system that lose findings or leave the user without the reason.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class ResourcesTest : public SandboxTest {
protected:
    /// Runs `analyze` with the fake core from within a shell command, in which "$@" stands for it.
    RunResult AnalyzeWithin(const std::string& shellCommand, const Arguments& options) const {
        sandbox.WriteDatabase();
        Arguments command{"/bin/sh", "-c", shellCommand, "sh"};
        const Arguments analyze = Sandbox::AnalyzeCommand(options);
        command.insert(command.end(), analyze.begin(), analyze.end());
        return RunningDriver(command, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    }
};

TEST_F(ResourcesTest, FullDeviceIsToldWithItsName) {
    sandbox.AddUnit("a.c");
    const RunResult result = sandbox.Analyze({"-o", "/dev/full", "-q"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("/dev/full")) << result;
    EXPECT_TRUE(result.Says("No space left on device")) << result;
}

// A limit on the size of files stands for a disk that fills up in the middle of the run.
TEST_F(ResourcesTest, ReportThatCannotGrowStaysReadable) {
    constexpr int Units = 120;
    for (int unit = 0; unit < Units; ++unit) {
        sandbox.AddUnit("unit" + std::to_string(unit) + ".c", {"finding V501 1 1 " + std::string(100, 'x')});
    }
    const RunResult result =
        AnalyzeWithin("trap '' XFSZ; ulimit -f 8; exec \"$@\"", {"-o", "report.json", "-q", "--verbose"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("File too large")) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("report.json"))) << result;
    std::vector<Finding> findings;
    ASSERT_NO_THROW(findings = Report());
    EXPECT_FALSE(findings.empty());
    EXPECT_EQ(findings.size() + result.Count(sandbox.Path("report.json") + ": File too large"), Units)
        << "each unit is in the report or told";
}

TEST_F(ResourcesTest, TooFewFilesAreToldOrAreEnough) {
    for (int unit = 0; unit < 6; ++unit) {
        sandbox.AddUnit("unit" + std::to_string(unit) + ".c", {"finding V501 1 1 found"});
    }
    bool wereTooFew = false;
    bool wereEnough = false;
    for (int limit = 5; limit <= 40; limit += 1) {
        const RunResult result = AnalyzeWithin("ulimit -n " + std::to_string(limit) + "; exec \"$@\"",
                                               {"-o", std::to_string(limit) + ".json", "-q", "-j", "2"});
        if (result.exitCode == 0) {
            wereEnough = true;
            EXPECT_EQ(Report(std::to_string(limit) + ".json").size(), 6U) << limit << result;
        } else {
            wereTooFew = true;
            EXPECT_EQ(result.exitCode, 1) << limit << result;
            EXPECT_TRUE(result.Says("Too many open files")) << limit << result;
        }
    }
    EXPECT_TRUE(wereTooFew);
    EXPECT_TRUE(wereEnough);
}

// With stacks of a gigabyte, a limit of memory leaves room for a few threads only.
TEST_F(ResourcesTest, MorePartsThanFilesMayBeOpenAreMerged) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    Arguments merge{"/bin/sh", "-c", "ulimit -n 20; exec \"$@\"", "sh", DriverProgram(), "merge", "-o", "m.json"};
    for (int shard = 1; shard <= 30; ++shard) {
        const std::string part = std::to_string(shard) + ".orvpart";
        EXPECT_EQ(sandbox.Analyze({"-q", "--shard", std::to_string(shard) + "/30", "-o", part}).exitCode, 0);
        merge.push_back(part);
    }
    const RunResult result = RunningDriver(merge, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Report("m.json").size(), 2U);
}

TEST_F(ResourcesTest, GoesOnWithTheThreadsThatTheSystemGrants) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer takes more memory than the limit grants";
#endif
    constexpr std::size_t Units = 12;
    for (std::size_t unit = 0; unit < Units; ++unit) {
        sandbox.AddUnit("unit" + std::to_string(unit) + ".c");
    }
    const RunResult result = AnalyzeWithin("ulimit -s 1000000; ulimit -v 5000000; exec \"$@\"",
                                           {"-o", "report.json", "-q", "-j", std::to_string(Units)});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says(" of 12 threads could be started: ")) << result;
    EXPECT_EQ(Report().size(), Units);
}

TEST_F(ResourcesTest, CompilerThatVanishesAfterItsIdentificationFailsItsUnits) {
    const std::string compiler = sandbox.AddCompiler("vanishing", "gcc 12\n", "version-remove-self\n");
    sandbox.AddUnit("a.c");
    sandbox.Write("b.c", "int b;\n");
    sandbox.AddEntry({{compiler, "-std=c11", "-c", "b.c"}});
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says(compiler)) << result;
    EXPECT_TRUE(result.Says("No such file or directory")) << result;
    const std::vector<Finding> findings = Report();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].code, "V008");
    EXPECT_EQ(findings[1].file, sandbox.Path("b.c"));
}

TEST_F(ResourcesTest, ReaderThatGoesAwayDoesNotEndTheRun) {
    for (int unit = 0; unit < 20; ++unit) {
        sandbox.AddUnit("unit" + std::to_string(unit) + ".c");
    }
    AnalyzeWithin("{ \"$@\"; echo $? > code; } | head -n 1", {"-o", "report.json"});
    EXPECT_EQ(sandbox.Read("code"), "0\n");
    EXPECT_EQ(Report().size(), 20U);
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(ResourcesTest, ClosedStandardStreamsHarmNoReport) {
    sandbox.AddUnit("a.c", {"stdout from the core", "finding V501 1 1 one"});
    sandbox.AddUnit("b.c", {"finding V501 1 1 two"});
    EXPECT_EQ(AnalyzeWithin("\"$@\" <&- >&- 2>&-", {"-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"one", "two"}));
}

TEST_F(ResourcesTest, ReportGoesThroughAPipe) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    AnalyzeWithin("mkfifo pipe.json; cat pipe.json > copy.json & "
                  "\"$@\"; wait",
                  {"-o", "pipe.json", "-q"});
    EXPECT_EQ(Report("copy.json").size(), 2U);
}

// Only this system has such names.
TEST_F(ResourcesTest, ValueThatTheSettingsFormatCannotHoldFailsItsUnit) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("line\nbreak.c");
    sandbox.AddUnit("b.c");
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("line\nbreak.c") + ": The settings format can't hold the value")) << result;
    EXPECT_TRUE(result.Says("line break")) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("a.c"), sandbox.Path("b.c")})) << result;
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

} // namespace

} // namespace Orvanta
