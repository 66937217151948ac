// Guards against a run that hides failed units, shows nonsense as progress, or fights with another run.

#include "e2e/support/SandboxTest.h"

#include <filesystem>
#include <optional>
#include <regex>
#include <set>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

class RunnerTest : public SandboxTest {};

struct ProgressLine {
    unsigned percent;
    std::string file;
};

std::vector<ProgressLine> ProgressOf(const RunResult& result) {
    const std::regex form(R"(\[([ 0-9]{3})%\] Analyzing: (.*))");
    std::vector<ProgressLine> lines;
    for (const std::string& line : result.Lines()) {
        std::smatch match;
        if (std::regex_match(line, match, form)) {
            lines.push_back({static_cast<unsigned>(std::stoul(match.str(1))), match.str(2)});
        }
    }
    return lines;
}

TEST_F(RunnerTest, ProgressNamesEveryUnitAndNeverFalls) {
    std::set<std::string> expected;
    for (int unit = 0; unit < 30; ++unit) {
        const std::string source = "unit" + std::to_string(unit) + ".c";
        sandbox.AddUnit(source);
        expected.insert(sandbox.Path(source));
    }
    const RunResult result = sandbox.Analyze({"-j", "8", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<ProgressLine> progress = ProgressOf(result);
    std::set<std::string> seen;
    unsigned last = 0;
    for (const ProgressLine& line : progress) {
        EXPECT_GE(line.percent, last) << result;
        last = line.percent;
        seen.insert(line.file);
    }
    EXPECT_EQ(seen, expected) << result;
    EXPECT_EQ(progress.size(), expected.size());
    EXPECT_EQ(last, 100U) << result;
    EXPECT_TRUE(result.Says("Analysis finished in ")) << result;
    EXPECT_TRUE(result.Says("The results are saved to " + sandbox.Path("report.json") + "\n")) << result;
    EXPECT_TRUE(result.Says("Compiler invocations: 30 (30 analyzed, 0 failed, 0 skipped, 0 excluded)\n")) << result;
    EXPECT_TRUE(result.Says("Findings: 30 high, 0 medium, 0 low\n")) << result;
}

TEST_F(RunnerTest, QuietRunSaysNothingButWhatFailed) {
    sandbox.AddUnit("a.c");
    const RunResult good = sandbox.Analyze({"-q", "-o", "report.json"});
    EXPECT_EQ(good.exitCode, 0) << good;
    EXPECT_EQ(good.output, "Using tracing file: compile_commands.json\n");

    sandbox.AddUnit("b.c", {"stderr what went wrong", "exit 3"});
    const RunResult bad = sandbox.Analyze({"-q", "-o", "report.json"});
    EXPECT_EQ(bad.exitCode, 1) << bad;
    EXPECT_TRUE(bad.Says(sandbox.Path("b.c"))) << bad;
    EXPECT_TRUE(bad.Says("what went wrong")) << bad;
    EXPECT_FALSE(bad.Says(sandbox.Path("a.c"))) << bad;
    EXPECT_FALSE(bad.Says("Analysis finished")) << bad;
}

struct FailingUnit {
    const char* source;
    std::vector<std::string> coreScript;
    std::string compilerScript;
    std::string reason;
};

TEST_F(RunnerTest, FailedUnitIsNamedAndHarmsNoOther) {
    const FailingUnit cases[] = {
        {"exits.c", {"finding V501 1 1 unreliable", "stderr bad input", "exit 3"}, "", "bad input"},
        {"crashes.c", {"crash"}, "", "returned code"},
        {"compiler.c", {}, "stderr x.c:1: error: no\nexit 2\n", "x.c:1: error: no"},
    };
    for (const FailingUnit& unit : cases) {
        sandbox.AddUnit(std::string("ok-") + unit.source, {"finding V501 1 1 good"});
        sandbox.AddUnit(unit.source, unit.coreScript);
        sandbox.Write(std::string(unit.source) + ".compiler", unit.compilerScript);
    }
    const RunResult result = sandbox.Analyze({"-o", "report.json", "-j", "2"});
    EXPECT_EQ(result.exitCode, 1) << result;
    for (const FailingUnit& unit : cases) {
        const std::size_t list = result.output.find("These could not be analyzed:");
        ASSERT_NE(list, std::string::npos) << result;
        const std::size_t named = result.output.find(sandbox.Path(unit.source), list);
        ASSERT_NE(named, std::string::npos) << unit.source << result;
        EXPECT_NE(result.output.find(unit.reason, named), std::string::npos) << unit.source << result;
    }
    EXPECT_TRUE(result.Says("(3 analyzed, 3 failed, 0 skipped, 0 excluded)")) << result;
    std::size_t good = 0;
    for (const std::string& message : MessagesOf(Report())) {
        good += message == "good" ? 1U : 0U;
    }
    EXPECT_EQ(good, 3U);
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

// A compiler cache may start its server from any call; the server keeps the outputs that it was given.
TEST_F(RunnerTest, ServerThatACoreLeavesBehindDoesNotHoldTheRun) {
    sandbox.AddUnit("a.c", {"spawn-hanging-child", "stdout said before", "finding V501 1 1 found"});
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("said before\n")) << result;
    EXPECT_EQ(MessagesOf(Report()), std::vector<std::string>{"found"});
}

TEST_F(RunnerTest, PreprocessingFailureIsShownWholeWhenVerbose) {
    sandbox.AddUnit("a.c");
    sandbox.Write("a.c.compiler", "stdout from the output\nstderr from the errors\nexit 1\n");
    const RunResult result = sandbox.Analyze({"--verbose", "--env", "MARK=mark"});
    EXPECT_EQ(result.exitCode, 1) << result;
    for (const char* const text : {"Source file can't be preprocessed!", "Environment variables:\n", "MARK=mark\n",
                                   "Stdout:\nfrom the output\n", "Stderr:\nfrom the errors\n"}) {
        EXPECT_TRUE(result.Says(text)) << text << result;
    }
}

TEST_F(RunnerTest, CoreThatCannotBeStartedEndsTheRunAtOnce) {
    for (int unit = 0; unit < 50; ++unit) {
        sandbox.AddUnit("unit" + std::to_string(unit) + ".c");
    }
    sandbox.Write("not-executable", "#!/bin/sh\n");
    sandbox.Write("wrong-format", std::string("\x01\x02 no program\0", 14));
    fs::permissions(sandbox.Path("wrong-format"), fs::perms::owner_all);
    fs::create_directory(sandbox.Path("folder"));
    sandbox.Write("unit0.c.compiler", "exit 1\n"); // it fails without a core
    ASSERT_EQ(sandbox.Analyze({"-i", "-o", "report.json"}).exitCode, 1);
    const std::string report = sandbox.Read("report.json");
    sandbox.Write("unit9.c", "int changed;\n");
    for (const char* const core : {"not-executable", "wrong-format", "folder"}) {
        Arguments options = {"analyze", "-j", "2", "--orvanta-path", core, "-o", "report.json"};
        options.insert(options.end(), std::string_view(core) == "folder" ? 0 : 1, "-i");
        const RunResult result = sandbox.Run(options);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_EQ(sandbox.Read("report.json"), report) << core;
        EXPECT_EQ(result.Count("Error: "), 1U) << result;
        EXPECT_TRUE(result.Says(sandbox.Path(core))) << result;
        EXPECT_LT(ProgressOf(result).size(), 10U) << result;
    }
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(RunnerTest, MissingCoreIsAnErrorBeforeTheFirstUnit) {
    sandbox.AddUnit("a.c");
    sandbox.WriteDatabase();
    fs::create_directory(sandbox.Path("alone"));
    const std::string driver = sandbox.Path("alone/orvanta-analyzer");
    fs::copy_file(DriverProgram(), driver);
    const RunResult result = RunningDriver({driver, "analyze"}, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: Couldn't find orvanta\n")) << result;
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-E"), 0U);

    fs::copy_file(FakeCoreProgram(), sandbox.Path("alone/Orvanta.exe"));
    const RunResult found = RunningDriver({driver, "analyze"}, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(found.exitCode, 0) << found;
    EXPECT_EQ(sandbox.CoreCalls().size(), 1U);
}

TEST_F(RunnerTest, TwoRunsNeverWriteOneReport) {
    sandbox.AddUnit("a.c", {"touch " + sandbox.Path("started"), "wait-for " + sandbox.Path("go-on"),
                            "finding V501 1 1 of the first"});
    const std::unique_ptr<RunningDriver> first = sandbox.StartAnalyze({"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("started"); }));

    const RunResult second = sandbox.Analyze({"-o", sandbox.Path() + "/./report.json"});
    EXPECT_EQ(second.exitCode, 1) << second;
    EXPECT_TRUE(second.Says("Error: ")) << second;
    EXPECT_TRUE(second.Says(sandbox.Path("report.json"))) << second;

    sandbox.WriteScript("a.c", {"finding V501 1 1 of the other"});
    const RunResult other = sandbox.Analyze({"-o", "other.json"});
    EXPECT_EQ(other.exitCode, 0) << other;

    sandbox.Write("go-on", "");
    const RunResult result = first->Wait();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(MessagesOf(Report()), std::vector<std::string>{"of the first"});
    EXPECT_EQ(MessagesOf(Report("other.json")), std::vector<std::string>{"of the other"});
    EXPECT_EQ(sandbox.Analyze({"-o", "report.json"}).exitCode, 0) << "the lock has died with its holder";
}

} // namespace

} // namespace Orvanta
