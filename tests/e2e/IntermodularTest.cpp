// Guards against stages that lose a unit, run out of order, or leave a report that was made without the linked
// information.

#include "e2e/support/SandboxTest.h"

#include <algorithm>

namespace Orvanta {

namespace {

class IntermodularTest : public SandboxTest {
protected:
    static constexpr const char* Collecting = "Intermodular analysis stage: Collecting intermodular information.\n";
    static constexpr const char* Linking = "Intermodular analysis stage: Linking intermodular information.\n";
    static constexpr const char* Performing = "Intermodular analysis stage: Performing analysis.\n";

    RunResult AnalyzeAcross(const Arguments& more = {}) {
        Arguments options = {"--intermodular", "-o", "report.json"};
        options.insert(options.end(), more.begin(), more.end());
        return sandbox.Analyze(options);
    }

    [[nodiscard]] std::vector<CoreCall> CallsOf(std::string_view stage) const {
        std::vector<CoreCall> calls = sandbox.CoreCalls();
        std::erase_if(calls, [stage](const CoreCall& call) {
            return call.Setting("intermodular") != stage || call.arguments.back() == "--skip-analysis";
        });
        return calls;
    }
};

TEST_F(IntermodularTest, CollectsLinksAndPerforms) {
    for (const char* const source : {"a.c", "b.c", "excluded.c"}) {
        sandbox.AddUnit(source);
    }
    const RunResult result = AnalyzeAcross({"-e", sandbox.Path("excluded.c")});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::size_t collecting = result.output.find(Collecting);
    const std::size_t linking = result.output.find(Linking);
    const std::size_t performing = result.output.find(Performing);
    ASSERT_NE(performing, std::string::npos) << result;
    EXPECT_LT(collecting, result.output.find("[ 16%] Parsing: ")) << result;
    EXPECT_LT(result.output.find("[ 50%] Parsing: "), linking) << result;
    EXPECT_LT(linking, performing);
    EXPECT_LT(performing, result.output.find("[100%] Analyzing: "));

    const std::vector<CoreCall> first = CallsOf("first-run");
    ASSERT_EQ(first.size(), 3U) << "nothing is excluded from collecting";
    EXPECT_EQ(first[0].Setting("intermodular-file"), "(absent)");
    const std::vector<CoreCall> merge = CallsOf("merge-info");
    ASSERT_EQ(merge.size(), 1U);
    const std::string merged = sandbox.Path(".Orvanta/intermodular-merged-info.Orvanta.dfo");
    EXPECT_EQ(merge[0].Setting("intermodular-file"), merged);
    const std::vector<CoreCall> second = CallsOf("second-run");
    ASSERT_EQ(second.size(), 2U);
    EXPECT_EQ(second[0].Setting("intermodular-file"), merged);
    EXPECT_EQ(second[0].Setting("intermodular-unit-file"), first[0].Setting("intermodular-unit-file"));

    const std::vector<std::string> messages = MessagesOf(Report());
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "Linked: a.c b.c excluded.c "), 2) << result;
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(IntermodularTest, PreprocessesAgainOnlyWhatMayHaveChangedSinceCollecting) {
    sandbox.Write("edited.h", "int old;\n");
    sandbox.AddUnit("a.c");
    sandbox.Write("a.c", "#include \"edited.h\"\n");
    sandbox.AddUnit("b.c", {"first-run append " + sandbox.Path("edited.h") + " int added;"});
    sandbox.AddUnit("c.c", {"listing exit 4"}); // what it includes is not known, so neither is whether that has changed
    const RunResult result = AnalyzeAcross({"-j", "1"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", sandbox.Path("a.c")), 2U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", sandbox.Path("b.c")), 1U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", sandbox.Path("c.c")), 2U);
    const std::vector<CoreCall> second = CallsOf("second-run");
    ASSERT_EQ(second.size(), 3U);
    EXPECT_NE(second[0].preprocessed.find("int added;"), std::string::npos);
}

TEST_F(IntermodularTest, AFailedLinkingEndsTheAnalysis) {
    sandbox.AddUnit("a.c");
    sandbox.Write("report.json", "of an earlier run");
    sandbox.SetVariable("FAKE_CORE_MERGE", "exit 7");
    const RunResult result = AnalyzeAcross();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("returned code 7.\n")) << result;
    EXPECT_LT(result.output.find("Compiler invocations: 1 ("), result.output.find("Error: ")) << result;
    EXPECT_FALSE(result.Says(Performing)) << result;
    EXPECT_EQ(sandbox.Read("report.json"), "of an earlier run");
    EXPECT_TRUE(sandbox.Leftovers().empty());
    const RunResult nowhere = sandbox.Analyze({"--intermodular", "-o", "missing/report.json"});
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_TRUE(nowhere.Says("can't find output directory")) << nowhere;
}

TEST_F(IntermodularTest, AUnitThatCouldNotBeCollectedHasFailed) {
    sandbox.AddUnit("a.c", {"first-run stderr no room", "first-run exit 3", "finding V501 1 1 found"});
    sandbox.AddUnit("b.c");
    const RunResult result = AnalyzeAcross();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("a.c") + ": Its intermodular information could not be collected: ")) << result;
    EXPECT_TRUE(result.Says("no room")) << result;
    EXPECT_TRUE(result.Says("2 (1 analyzed, 1 failed")) << result;
    const std::vector<std::string> messages = MessagesOf(Report());
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "Linked: b.c "), 2);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "found"), 1);
}

} // namespace

} // namespace Orvanta
