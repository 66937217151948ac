// Guards against a Ctrl+C that hangs with a hanging child, leaves processes or files behind, or loses finished units.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class InterruptTest : public SandboxTest {
protected:
    static constexpr const char* StopMessage = "Stopping analysis. This might take a while...\n";

    [[nodiscard]] bool IsReady(const std::string& name) const { return sandbox.Exists(name); }
};

TEST_F(InterruptTest, EndsAHangingCoreAndAllThatItStarted) {
    sandbox.AddUnit("a.c", {"finding V501 1 1 finished"});
    sandbox.AddUnit("b.c", {"finding V501 1 1 unfinished", "spawn-hanging-child", "hang"});
    sandbox.AddUnit("c.c", {"finding V501 1 1 finished behind it", "touch " + sandbox.Path("c-done")});
    sandbox.AddUnit("d.c", {"hang"});
    sandbox.AddUnit("e.c");
    InterruptibleRun run(sandbox, {"-j", "2", "-o", "report.json"});
    ASSERT_TRUE(
        HoldsSoon([&] { return IsReady("records/core-of-b.c.hangs") && IsReady("records/core-of-d.c.hangs"); }));
    ASSERT_TRUE(sandbox.IsAlive("child-of-b.c"));

    run.Interrupt();
    const RunResult result = run.Wait();
    EXPECT_EQ(result.exitCode, 130) << result;
    EXPECT_EQ(result.Count(StopMessage), 1U) << result;
    for (const char* const key : {"core-of-b.c", "child-of-b.c", "core-of-d.c"}) {
        EXPECT_TRUE(HoldsSoon([&] { return !sandbox.IsAlive(key); })) << key;
    }
    EXPECT_TRUE(sandbox.Leftovers().empty());
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"finished", "finished behind it"}));
    EXPECT_TRUE(result.Says("(2 analyzed, 0 failed, 0 skipped, 0 excluded, 3 stopped)")) << result;
    EXPECT_FALSE(result.Says("These could not be analyzed")) << result;
}

TEST_F(InterruptTest, SecondOneChangesNothing) {
    sandbox.AddUnit("a.c", {"hang"});
    InterruptibleRun run(sandbox, {"-q", "-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return IsReady("records/core-of-a.c.hangs"); }));
    run.Interrupt();
    ASSERT_TRUE(HoldsSoon([&] { return run.OutputSoFar().find(StopMessage) != std::string::npos; }));
    run.Interrupt();
    run.Interrupt();
    const RunResult result = run.Wait();
    EXPECT_EQ(result.exitCode, 130) << result;
    EXPECT_EQ(result.Count(StopMessage), 1U) << result;
    EXPECT_TRUE(Report().empty());
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(InterruptTest, EndsAHangingCompiler) {
    sandbox.AddUnit("a.c");
    sandbox.Write("a.c.compiler", "hang\n");
    InterruptibleRun run(sandbox, {"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return IsReady("tools/compiler-of-a.c.hangs"); }));
    run.Interrupt();
    const RunResult result = run.Wait();
    EXPECT_EQ(result.exitCode, 130) << result;
    EXPECT_TRUE(Report().empty()) << "a stopped unit is no finding";
    EXPECT_TRUE(sandbox.CoreCalls().empty());
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(InterruptTest, EndsAHangingVersionQueryAndProbe) {
    const std::string silent = sandbox.AddCompiler("silent", "", "version-hang\n");
    sandbox.Write("a.c", "int a;\n");
    sandbox.AddEntry({{silent, "-c", "a.c"}});
    InterruptibleRun query(sandbox, {"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return IsReady("tools/version-query.hangs"); }));
    query.Interrupt();
    EXPECT_EQ(query.Wait().exitCode, 130);

    Sandbox own;
    own.AddCompiler("fake-clang", "");
    own.Write("a.cpp", "int a;\n");
    own.Write("tools/fake-clang.script", "hang-on-probe\n");
    own.AddEntry({{own.Path("tools/fake-clang"), "-c", "a.cpp"}});
    InterruptibleRun probe(own, {"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return own.Exists("tools/probe.hangs"); }));
    probe.Interrupt();
    EXPECT_EQ(probe.Wait().exitCode, 130);
    EXPECT_TRUE(own.Leftovers().empty());
}

TEST_F(InterruptTest, EndsAnAnalysisAcrossUnitsInWhateverStage) {
    for (const char* const stage : {"first-run", "merge", "second-run"}) {
        Sandbox own;
        own.Write("report.json", "of an earlier run");
        own.AddUnit("a.c");
        own.AddUnit("b.c", {std::string_view(stage) == "first-run" ? "first-run hang" : "stdout done",
                            std::string_view(stage) == "second-run" ? "hang" : "stdout done"});
        std::string ready = "records/core-of-b.c.hangs";
        if (std::string_view(stage) == "merge") {
            own.SetVariable("FAKE_CORE_MERGE", "hang");
            ready = "records/core-of-.hangs";
        }
        InterruptibleRun run(own, {"--intermodular", "-o", "report.json"});
        ASSERT_TRUE(HoldsSoon([&] { return own.Exists(ready); })) << stage;
        run.Interrupt();
        const RunResult result = run.Wait();
        EXPECT_EQ(result.exitCode, 130) << stage << result;
        const bool isLastStage = std::string_view(stage) == "second-run";
        EXPECT_EQ(result.Says("Performing analysis.\n"), isLastStage) << stage << result;
        EXPECT_EQ(own.Read("report.json") == "of an earlier run", !isLastStage) << stage;
        EXPECT_TRUE(own.Leftovers().empty()) << stage;
    }
}

TEST_F(InterruptTest, KeepsWhatAnIncrementalRunHasFinishedAndWhatHasNotChanged) {
    const auto interrupt = [this] {
        sandbox.ForgetCoreCalls();
        sandbox.WriteScript("b.c", {"hang"});
        InterruptibleRun run(sandbox, {"-i", "-j", "1", "-o", "report.json"});
        EXPECT_TRUE(HoldsSoon([&] { return IsReady("records/core-of-b.c.hangs"); }));
        run.Interrupt();
        const RunResult result = run.Wait();
        EXPECT_EQ(result.exitCode, 130) << result;
        return result;
    };
    sandbox.AddUnit("a.c", {"finding V501 1 1 finished"});
    sandbox.AddUnit("b.c");
    sandbox.AddUnit("c.c", {"finding V501 1 1 behind it"});
    interrupt();
    sandbox.WriteScript("b.c", {"finding V501 1 1 found at last"});
    sandbox.ForgetCoreCalls();
    EXPECT_EQ(sandbox.Analyze({"-i", "-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("b.c"), sandbox.Path("c.c")}));
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"finished", "found at last", "behind it"}));

    sandbox.Write("b.c", "int changed;\n");
    const RunResult result = interrupt();
    EXPECT_TRUE(result.Says("(0 analyzed, 2 carried over, 0 failed, 0 skipped, 0 excluded, 1 stopped)")) << result;
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"finished", "behind it"}));
}

} // namespace

} // namespace Orvanta
