// Guards against one file that holds up or floods a run, and against limits that leave processes behind or half a list.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class LimitsTest : public SandboxTest {};

TEST_F(LimitsTest, AFileThatTakesTooLongFailsByNameAndLeavesNothing) {
    sandbox.AddUnit("core.c", {"finding V501 1 1 before", "spawn-hanging-child", "hang"});
    sandbox.AddUnit("compiler.c");
    sandbox.Write("compiler.c.compiler", "hang\n");
    const RunResult result = sandbox.Analyze({"-j", "2", "--timeout", "1", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("(0 analyzed, 2 failed")) << result;
    EXPECT_EQ(result.Count("Timed out (--timeout). Command \""), 2U) << result;
    EXPECT_TRUE(result.Says("  " + sandbox.Path("core.c") + ": ")) << result;
    EXPECT_TRUE(result.Says("  " + sandbox.Path("compiler.c") + ": Source file can't be preprocessed! Timed"))
        << result;
    for (const char* const key : {"core-of-core.c", "child-of-core.c"}) {
        EXPECT_TRUE(HoldsSoon([&] { return !sandbox.IsAlive(key); })) << key;
    }
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(LimitsTest, AFileWithTooMuchOutputFailsByName) {
    sandbox.AddUnit("loud.c", {"stdout 0123456789", "stdout 0123456789"});
    sandbox.AddUnit("quiet.c");
    const RunResult result = sandbox.Analyze({"--max-output", "15", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("(1 analyzed, 1 failed")) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("loud.c") + ": Too much output (--max-output) on standard output. Comm"))
        << result;
    EXPECT_EQ(sandbox.Analyze({"--max-output", "1K", "-o", "report.json"}).exitCode, 0);

    sandbox.ForgetCoreCalls();
    const RunResult cut = sandbox.Analyze({"-i", "--max-output", "5", "-o", "report.json"});
    EXPECT_EQ(cut.exitCode, 1) << cut;
    EXPECT_TRUE(cut.Says("(0 analyzed, 2 failed")) << cut;
    EXPECT_TRUE(sandbox.AnalyzedSources().empty()) << "half a list of files was taken for the whole";
}

TEST_F(LimitsTest, ThatMeanNothingAreRefused) {
    sandbox.AddUnit("a.c");
    const std::pair<const char*, const char*> cases[] = {
        {"--timeout", "0"},          {"--timeout", "1.5"},   {"--timeout", "-1"},
        {"--timeout", "4294967296"}, {"--max-output", ""},   {"--max-output", "K"},
        {"--max-output", "0M"},      {"--max-output", "1T"}, {"--max-memory", "0"}};
    for (const auto& [option, value] : cases) {
        const RunResult result = sandbox.Run({"analyze", std::string(option) + "=" + value});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says("Error: Wrong value of " + std::string(option) + ": \"" + value + "\"")) << result;
    }
}

} // namespace

} // namespace Orvanta
