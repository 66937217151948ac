// Guards against a run whose end hides the worst that it found, and a gate that lets through what it is there for.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class ShownFindingsTest : public SandboxTest {
protected:
    ShownFindingsTest() {
        sandbox.AddUnit("low.c", {"finding V501 3 1 low", "finding V112 2 2 esc \x1B[31m"});
        sandbox.AddUnit("high.c", {"finding V502 1 3 high"});
    }

    // What stands behind the line that says where the report is.
    static std::string End(const RunResult& result) {
        const std::size_t line = result.output.find("The results are saved to ");
        return line == std::string::npos ? "" : result.output.substr(result.output.find('\n', line) + 1);
    }
};

TEST_F(ShownFindingsTest, TheWorstComeFirstWithPathsFromHere) {
    EXPECT_EQ(End(sandbox.Analyze({"-o", "r.json"})), "high.c:3: high: [V502] high\n"
                                                      "low.c:2: medium: [V112] esc \\x1B[31m\n"
                                                      "low.c:1: low: [V501] low\n");
    EXPECT_EQ(End(sandbox.Analyze({"-o", "r.json", "--show", "1"})), "high.c:3: high: [V502] high\n... and 2 more\n");
    EXPECT_EQ(End(sandbox.Analyze({"-o", "r.json", "--show", "0"})), "");
    EXPECT_FALSE(sandbox.Analyze({"-o", "r.json", "-q"}).Says("high.c:3: "));
    EXPECT_FALSE(sandbox.Analyze({"-r", "."}).Says("high.c:3: ")); // the report itself is on standard output
    sandbox.SetVariable("CLICOLOR_FORCE", "1");
    EXPECT_TRUE(
        sandbox.Analyze({"-o", "r.json", "-r", "."}).Says("\x1B[1mhigh.c:3: \x1B[31mhigh: \x1B[0m[V502] high\n"));
    sandbox.SetVariable("NO_COLOR", "1");
    EXPECT_EQ(sandbox.Analyze({"-o", "r.json"}).Count("\x1B"), 0U);
}

TEST_F(ShownFindingsTest, TheGateLooksAtWhatIsShownAndFailuresWin) {
    const std::pair<Arguments, int> cases[] = {
        {{"--fail-on", "GA:1"}, 2},      {{"--fail-on", "64", "-q"}, 2},          {{"--fail-on", "64:1;OP"}, 0},
        {{"--fail-on", "all"}, 2},       {{"--fail-on", "all", "-s", "base"}, 0}, {{"--fail-on", "all", "-i"}, 2},
        {{"--fail-on", "all", "-i"}, 2}, // nothing has changed: the report stays and is looked at
        {{"--fail-on", "GA: 1"}, 1},
    };
    EXPECT_EQ(sandbox.Analyze({"-o", "r.json"}).exitCode, 0);
    EXPECT_EQ(sandbox.Run({"suppress", "r.json", "-o", "base"}).exitCode, 0);
    for (const auto& [options, exitCode] : cases) {
        Arguments arguments = {"-o", "r.json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const RunResult result = sandbox.Analyze(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << result;
    }
    EXPECT_EQ(sandbox.Analyze({"--fail-on", "64:2"}).exitCode, 2); // on standard output too
    sandbox.AddUnit("broken.c", {"exit 3"});
    EXPECT_EQ(sandbox.Analyze({"-o", "r.json", "--fail-on", "all"}).exitCode, 1);
}

TEST_F(ShownFindingsTest, ListsOfNothingAreAllowedWhenAskedFor) {
    sandbox.Write("list", "notes.txt\n");
    sandbox.Write("notes.txt", "");
    sandbox.Write("none", "");
    for (const char* const list : {"list", "none"}) {
        EXPECT_EQ(sandbox.Analyze({"-S", list}).exitCode, 1);
        EXPECT_EQ(sandbox.Analyze({"-S", list, "--allow-empty"}).exitCode, 0);
    }
}

TEST_F(ShownFindingsTest, ErrorsSayWhatToDo) {
    RunResult result = sandbox.Run({"analyze", "-f", "gone.json"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output.find("Error: Couldn't open file gone.json\nHave the build make a database"), 0U) << result;
    sandbox.WriteDatabase();
    sandbox.Write("build/compile_commands.json", sandbox.Read("compile_commands.json"));
    result = sandbox.Run({"analyze", "-f", "gone.json"});
    EXPECT_TRUE(result.Says("build/compile_commands.json exists: -f build/compile_commands.json\n") ||
                result.Says("build\\compile_commands.json exists: -f build\\compile_commands.json\n"))
        << result;
    EXPECT_EQ(sandbox.Analyze({"-f", "build"}).exitCode, 0);
    result = sandbox.Run({"analyze", "--shw"});
    EXPECT_TRUE(result.output.ends_with("\nFlag could not be matched: shw\n")) << result;
}

} // namespace

} // namespace Orvanta
