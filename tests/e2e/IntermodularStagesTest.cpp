// Guards against stages on several machines that give another report than one run, and against one that works with what
// another build, half a shard or an earlier attempt has left.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class IntermodularStagesTest : public SandboxTest {
protected:
    RunResult Stage(const std::string& stage, const Arguments& more = {}) {
        Arguments options = {"--intermodular-stage", stage, "--shared", "shared", "-e", sandbox.Path("excluded.c")};
        options.insert(options.end(), more.begin(), more.end());
        return sandbox.Analyze(options);
    }

    RunResult Perform() { return Stage("perform", {"-o", "report.json"}); }

    static std::string FailuresIn(const RunResult& result) {
        const std::size_t begin = result.output.find("These could not be analyzed:\n");
        return result.output.substr(begin, result.output.find("Analysis finished", begin) - begin);
    }
};

TEST_F(IntermodularStagesTest, OnShardsMakeTheReportOfOneRun) {
    for (const char* const source : {"a.c", "b.c", "c.c", "d.c", "excluded.c"}) {
        sandbox.AddUnit(source);
    }
    sandbox.AddUnit("uncollected.c", {"first-run exit 3", "finding V501 1 1 found all the same"});
    sandbox.AddUnit("failing.c", {"finding V501 1 1 before the end", "exit 4"});
    sandbox.AddUnit("unpreprocessed.c");
    sandbox.Write("unpreprocessed.c.compiler", "stderr error: broken\nexit 1\n");
    const RunResult whole =
        sandbox.Analyze({"--intermodular", "-o", "whole.json", "-e", sandbox.Path("excluded.c"), "--show", "0"});
    EXPECT_EQ(whole.exitCode, 1) << whole;

    for (const char* const shard : {"1/3", "2/3", "3/3"}) {
        const RunResult result = Stage("collect", {"--shard", shard});
        EXPECT_EQ(result.exitCode, result.Says("These could not be analyzed") ? 1 : 0) << result;
        EXPECT_TRUE(result.Says("is saved to " + sandbox.Path("shared/collected/" + std::string(1, *shard) + "-of-3")))
            << result;
    }
    const RunResult linked = Stage("link");
    EXPECT_EQ(linked.exitCode, 0) << linked;
    EXPECT_TRUE(linked.Says("The intermodular information of 6 source files is linked into ")) << linked;

    const RunResult performed = Stage("perform", {"-o", "report.json", "--show", "0"});
    EXPECT_EQ(performed.exitCode, 1) << performed;
    EXPECT_EQ(FailuresIn(performed), FailuresIn(whole));
    EXPECT_EQ(sandbox.Read("report.json"), sandbox.Read("whole.json"));

    Stage("perform", {"--shard", "1/2", "-o", "1.orvpart"}); // other shards than those that have collected
    Stage("perform", {"--shard", "2/2", "-o", "2.orvpart"});
    const RunResult merged = sandbox.Run({"merge", "1.orvpart", "2.orvpart", "-o", "merged.json"});
    EXPECT_EQ(merged.exitCode, 1) << merged;
    EXPECT_EQ(sandbox.Read("merged.json"), sandbox.Read("whole.json"));
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(IntermodularStagesTest, LinkingNamesWhatIsMissingOrOfAnotherRun) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    EXPECT_TRUE(Stage("link").Says("Nothing is collected in " + sandbox.Path("shared")));
    EXPECT_EQ(Stage("collect", {"--shard", "1/2"}).exitCode, 0);
    const RunResult missing = Stage("link");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.Says("1 of 2 shards is missing: 2\n")) << missing;

    EXPECT_EQ(Stage("collect", {"--shard", "2/2", "-I", "elsewhere"}).exitCode, 0);
    const RunResult mixed = Stage("link");
    EXPECT_TRUE(mixed.Says("differ in the settings")) << mixed;
    EXPECT_EQ(Stage("collect", {"--shard", "2/2"}).exitCode, 0);
    EXPECT_TRUE(Stage("link", {"-I", "elsewhere"}).Says("is not of this run: it differs in the settings"));
    EXPECT_EQ(Stage("link").exitCode, 0);

    EXPECT_EQ(Stage("collect", {"--shard", "2/3"}).exitCode, 0);
    const RunResult cutAnew = Stage("link");
    EXPECT_TRUE(cutAnew.Says("differ in the shards (1/2 and 2/3)\nRemove the folders of those")) << cutAnew;
    sandbox.AddUnit("c.c");
    EXPECT_EQ(Stage("collect", {"--shard", "2/3"}).exitCode, 0);
    EXPECT_TRUE(Stage("link").Says("differ in the build description"));
}

TEST_F(IntermodularStagesTest, AStageThatWasStoppedOrKilledIsRunAgain) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c", {"first-run hang"});
    const Arguments collect = {"--intermodular-stage",     "collect", "--shared", "shared", "-e",
                               sandbox.Path("excluded.c"), "-j",      "1"};
    const auto hangs = [this] {
        return sandbox.Exists("records/core-of-b.c.hangs");
    };
    {
        InterruptibleRun stopped(sandbox, collect);
        ASSERT_TRUE(HoldsSoon(hangs));
        stopped.Interrupt();
        EXPECT_EQ(stopped.Wait().exitCode, 130);
    }
    const RunResult refused = Stage("link");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.Says("Shard 1 was stopped: 1 of its 2 source files were not analyzed\n")) << refused;

    sandbox.WriteScript("b.c", {"stdout done"});
    EXPECT_EQ(Stage("collect").exitCode, 0);
    EXPECT_EQ(Stage("link").exitCode, 0);
    sandbox.Write("report.json", "of an earlier run");
    sandbox.WriteScript("b.c", {"first-run hang"});
    sandbox.ForgetCoreCalls();
    const std::unique_ptr<RunningDriver> killed = sandbox.StartAnalyze(collect);
    ASSERT_TRUE(HoldsSoon(hangs));
    killed->Kill();
    EXPECT_TRUE(Stage("link").Says("Shard 1 was stopped: 2 of its 2 source files"));
    EXPECT_TRUE(Perform().Says("Shard 1 was stopped: 2 of its 2 source files"));

    sandbox.WriteScript("b.c", {"stdout done"});
    EXPECT_EQ(Stage("collect").exitCode, 0);
    const RunResult unlinked = Perform();
    EXPECT_EQ(unlinked.exitCode, 1);
    EXPECT_TRUE(unlinked.Says("is not what is collected there now\nRun --intermodular-stage link\n")) << unlinked;
    EXPECT_EQ(sandbox.Read("report.json"), "of an earlier run");
    sandbox.SetVariable("FAKE_CORE_MERGE", "exit 7");
    EXPECT_EQ(Stage("link").exitCode, 1);
    EXPECT_TRUE(Perform().Says("Nothing is linked in "));
    sandbox.SetVariable("FAKE_CORE_MERGE", "");
    EXPECT_EQ(Stage("link").exitCode, 0);
    EXPECT_EQ(Perform().exitCode, 0);
    EXPECT_EQ(MessagesOf(Report()).back(), "Linked: a.c b.c ");
}

// As one run does it: what was linked is of the file as it was.
TEST_F(IntermodularStagesTest, PerformingPreprocessesTheFilesAsTheyAre) {
    sandbox.AddUnit("a.c", {"stdout done"});
    EXPECT_EQ(Stage("collect").exitCode, 0);
    EXPECT_EQ(Stage("link").exitCode, 0);
    EXPECT_TRUE(sandbox.Leftovers().empty());
    sandbox.Write("a.c", "int edited;\n");
    sandbox.ForgetCoreCalls();
    EXPECT_EQ(Perform().exitCode, 0);
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 1U) << "nothing is listed that no stage asks for";
    EXPECT_NE(calls[0].preprocessed.find("int edited;"), std::string::npos);
    EXPECT_EQ(calls[0].Setting("intermodular-unit-file"), sandbox.Path("shared/collected/1-of-1/1.Orvanta.dfo"));
}

TEST_F(IntermodularStagesTest, OptionsThatDoNotFitAreRefused) {
    sandbox.AddUnit("a.c");
    EXPECT_TRUE(Stage("join").Says("Wrong value of --intermodular-stage: \"join\""));
    EXPECT_TRUE(Stage("link", {"--shard", "1/2"}).Says("--intermodular-stage link and --shard"));
    EXPECT_TRUE(Stage("collect", {"-i"}).Says("--incremental and --intermodular"));
    EXPECT_TRUE(sandbox.Analyze({"--intermodular-stage", "collect"}).Says("needs --shared"));
    EXPECT_TRUE(sandbox.Analyze({"--intermodular", "--shard", "1/2"}).Says("--intermodular-stage brings it together"));
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

} // namespace

} // namespace Orvanta
