// Guards against a compiler or a core that runs where it was not to, against work that goes on elsewhere when its run
// has ended, and against files left in a folder that machines share.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace Orvanta {

namespace {

class LauncherTest : public SandboxTest {
protected:
    // Quoted by the rules of both systems.
    [[nodiscard]] Arguments Launched(const Arguments& more = {}) const {
        Arguments options = {"--launcher", std::string("\"") + ORVANTA_FAKE_LAUNCHER + "\" \"" + Record() + "\"",
                             "--shared",   "shared folder",
                             "-o",         "report.json"};
        options.insert(options.end(), more.begin(), more.end());
        return options;
    }

    [[nodiscard]] std::string Record() const { return sandbox.Path("launched.txt"); }

    // What the launcher was given, each start by its program and its last word or flag that matters.
    [[nodiscard]] std::vector<std::string> Starts() const {
        std::vector<std::string> starts;
        std::istringstream lines(sandbox.Read("launched.txt"));
        for (std::string line; std::getline(lines, line);) {
            const std::string program(FileNameOf(line.substr(0, line.find(' '))));
            for (const char* const word : {" --version", " -dumpmachine", "__std_test__", " -E ", " --skip-analysis",
                                           "Intermodular", " --cfg "}) {
                if (line.find(word) != std::string::npos) {
                    starts.push_back(program + ": " + word);
                    break;
                }
            }
        }
        std::sort(starts.begin(), starts.end());
        return starts;
    }

    [[nodiscard]] bool SharedFolderIsEmpty() const {
        return std::filesystem::is_empty(NativePath(sandbox.Path("shared folder")));
    }
};

TEST_F(LauncherTest, StartsEveryCompilerAndCoreAndNothingElse) {
    const std::string compiler = sandbox.AddCompiler("arm-none-eabi-gcc", "arm-none-eabi-gcc (Fake) 12.2.0\n");
    sandbox.Write("a.c", "int a;\n");
    sandbox.AddEntry({{compiler, "-c", "a.c"}});
    sandbox.SetVariable("FAKE_CORE_VERSION", "Fake core 1");
    EXPECT_EQ(sandbox.Analyze({"-o", "direct.json", "--intermodular"}).exitCode, 0);
    const std::size_t calls = sandbox.CompilerCalls("arm-none-eabi-gcc");
    sandbox.ForgetCoreCalls();

    const RunResult result = sandbox.Analyze(Launched({"--intermodular", "--stats", "stats.jsonl", "--verbose"}));
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::string core(FileNameOf(FakeCoreProgram()));
    EXPECT_EQ(Starts(), (std::vector<std::string>{"arm-none-eabi-gcc:  --version", "arm-none-eabi-gcc:  -E ",
                                                  "arm-none-eabi-gcc:  -dumpmachine", "arm-none-eabi-gcc: __std_test__",
                                                  core + ":  --cfg ", core + ":  --cfg ", core + ":  --skip-analysis",
                                                  core + ":  --version", core + ": Intermodular"}));
    EXPECT_EQ(sandbox.CompilerCalls("arm-none-eabi-gcc"), 2 * calls) << "none is started twice";
    EXPECT_EQ(sandbox.CoreCalls().size(), 4U);
    EXPECT_EQ(sandbox.Read("report.json"), sandbox.Read("direct.json"));
    for (const CoreCall& call : sandbox.CoreCalls()) {
        EXPECT_TRUE(call.arguments.at(2).starts_with(sandbox.Path("shared folder"))) << call.arguments.at(2);
    }
    EXPECT_TRUE(SharedFolderIsEmpty());
    EXPECT_NE(sandbox.Read("stats.jsonl").find("\"cpuMs\":0,\"peakBytes\":0}"), std::string::npos)
        << "what the launcher took is not what the core took";
}

TEST_F(LauncherTest, IsAskedToEndWhatItHasStartedAtAnInterruptAndAtATimeout) {
    sandbox.AddUnit("a.c", {"hang"});
    InterruptibleRun run(sandbox, Launched());
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("records/core-of-a.c.hangs"); }));
    run.Interrupt();
    EXPECT_EQ(run.Wait().exitCode, 130);
    EXPECT_FALSE(sandbox.IsAlive("core-of-a.c"));
    EXPECT_TRUE(SharedFolderIsEmpty());

    Sandbox own;
    own.AddUnit("a.c", {"hang"});
    const Arguments words = {"--launcher", std::string("\"") + ORVANTA_FAKE_LAUNCHER + "\" \"" + Record() + "\"",
                             "--shared",   sandbox.Path("shared folder"),
                             "--timeout",  "2"};
    const RunResult late = own.Analyze(words);
    EXPECT_EQ(late.exitCode, 1) << late;
    EXPECT_TRUE(late.Says("Timed out (--timeout)")) << late;
    EXPECT_FALSE(own.IsAlive("core-of-a.c"));
    EXPECT_TRUE(SharedFolderIsEmpty());
}

TEST_F(LauncherTest, IsAskedToEndWhatItHasStartedWhenTheRunIsKilled) {
    sandbox.AddUnit("a.c", {"hang"});
    const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze(Launched());
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("records/core-of-a.c.hangs"); }));
    run->Kill();
    EXPECT_TRUE(HoldsSoon([&] { return !sandbox.IsAlive("core-of-a.c"); }));
    sandbox.WriteScript("a.c", {"finding V501 1 1 found"});
    EXPECT_EQ(sandbox.Analyze(Launched()).exitCode, 0);
    EXPECT_TRUE(SharedFolderIsEmpty()) << "what the killed run left is not cleared";
}

TEST_F(LauncherTest, WordsThatStartNothingAreToldBeforeAnyWork) {
    sandbox.AddUnit("a.c");
    sandbox.Write("report.json", "of an earlier run");
    sandbox.Write("file", "");

    struct Case {
        Arguments options;
        const char* message;
    };

    const Case cases[] = {
        {{"--launcher", " ", "--shared", "s"}, "Wrong value of --launcher: \" \", expected a program"},
        {{"--launcher", "no-such-launcher -n1", "--shared", "s"}, "there is no program \"no-such-launcher\""},
        {{"--launcher", "./none x", "--shared", "s"}, "there is no program \"./none\""},
        {{"--launcher", ORVANTA_FAKE_LAUNCHER}, "--launcher needs --shared"},
        {{"--launcher", ORVANTA_FAKE_LAUNCHER, "--shared", "file"}, "Wrong value of --shared: \"file\""},
        {{"--launcher", ORVANTA_FAKE_LAUNCHER, "--shared", "s", "--max-memory", "1G"}, "--launcher and --max-memory"},
        {{"--shared", "s"}, "--shared needs --launcher"},
    };
    for (const auto& [options, message] : cases) {
        Arguments all = {"-o", "report.json"};
        all.insert(all.end(), options.begin(), options.end());
        const RunResult result = sandbox.Analyze(all);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(message)) << message << result;
    }
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc"), 0U);
    EXPECT_EQ(sandbox.Read("report.json"), "of an earlier run");
    EXPECT_FALSE(sandbox.Exists("s"));
}

} // namespace

} // namespace Orvanta
