// Guards against a driver that is silent, or unclear, about how it is to be called, and against exit codes that a
// build script can't rely on.

#include "e2e/support/SandboxTest.h"

#include <regex>

namespace Orvanta {

namespace {

class EntryTest : public SandboxTest {};

constexpr const char* Epilog = "The OrvantaDriver utility defines several non-zero exit codes,";

TEST_F(EntryTest, HelpShowsTheSubcommandsAndTheExitCodes) {
    for (const char* const flag : {"-h", "--help"}) {
        const RunResult result = sandbox.Run({flag});
        EXPECT_EQ(result.exitCode, 0) << result;
        for (const char* const text : {"Usage:", "Options:", "Compiler commands analyzer tool.",
                                       "Launch Orvanta for your project", "filter-suppressed", "Show help page", Epilog,
                                       "  1 - Error (crash) during analysis of some source file(s);"}) {
            EXPECT_TRUE(result.Says(text)) << text << result;
        }
    }
}

TEST_F(EntryTest, HelpOfAnalyzeShowsItsOptionsButNotTheHiddenOnes) {
    const RunResult result = sandbox.Run({"analyze", "--help"});
    EXPECT_EQ(result.exitCode, 0) << result;
    for (const char* const text : {"--threads", "--exclude-path", "--analysis-mode", "--ignore-ccache", "--verbose"}) {
        EXPECT_TRUE(result.Says(text)) << text << result;
    }
    for (const char* const text : {"--dump-json", "--cl-params", "--analyze-only"}) {
        EXPECT_FALSE(result.Says(text)) << text << result;
    }
}

TEST_F(EntryTest, VersionIsOneLine) {
    const RunResult result = sandbox.Run({"--version"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(std::regex_match(result.output, std::regex("orvanta-analyzer [0-9]+\\.[0-9]+\\.[0-9]+\n"))) << result;
}

struct BadCommandLine {
    Arguments arguments;
    const char* named; // what the error text must name
};

TEST_F(EntryTest, BadCommandLineIsExplainedBeforeTheHelp) {
    const BadCommandLine cases[] = {
        {{}, ""},
        {{"frobnicate"}, ""},
        {{"--bogus"}, "bogus"},
        {{"analyze", "--bogus"}, "bogus"},
        {{"analyze", "--threads"}, "threads"},
        {{"analyze", "--quiet=yes"}, "quiet"},
        {{"analyze", "stray-argument"}, "stray"},
    };
    for (const BadCommandLine& bad : cases) {
        const RunResult result = sandbox.Run(bad.arguments);
        EXPECT_EQ(result.exitCode, 1) << result;
        ASSERT_FALSE(result.Lines().empty());
        EXPECT_NE(result.Lines().front().find(bad.named), std::string::npos) << bad.named << result;
        EXPECT_GT(result.output.find("Usage:"), 0U) << result;
        EXPECT_TRUE(result.Says(Epilog)) << result;
    }
}

TEST_F(EntryTest, CompletionOffersWhatMayFollow) {
    const RunResult commands = sandbox.Run({"--complete", "bash", "1", "orvanta-analyzer", "ana"});
    EXPECT_EQ(commands.exitCode, 0) << commands;
    EXPECT_EQ(commands.output, "analyze") << commands;

    const RunResult options = sandbox.Run({"--complete", "bash", "2", "orvanta-analyzer", "analyze", "--ex"});
    EXPECT_EQ(options.exitCode, 0) << options;
    EXPECT_EQ(options.output, "--exclude-path") << options;
}

} // namespace

} // namespace Orvanta
