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
    sandbox.AddEntry({
        {silent, "-c", "a.c"}
    });
    InterruptibleRun query(sandbox, {"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return IsReady("tools/version-query.hangs"); }));
    query.Interrupt();
    EXPECT_EQ(query.Wait().exitCode, 130);

    Sandbox own;
    own.AddCompiler("fake-clang", "");
    own.Write("a.cpp", "int a;\n");
    own.Write("tools/fake-clang.script", "hang-on-probe\n");
    own.AddEntry({
        {own.Path("tools/fake-clang"), "-c", "a.cpp"}
    });
    InterruptibleRun probe(own, {"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return own.Exists("tools/probe.hangs"); }));
    probe.Interrupt();
    EXPECT_EQ(probe.Wait().exitCode, 130);
    EXPECT_TRUE(own.Leftovers().empty());
}

} // namespace

} // namespace Orvanta
