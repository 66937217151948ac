// Guards against commands that a pipe holds for ever, against findings that nobody gets, and against outputs that take
// the place of what is read.

#include "e2e/support/SandboxTest.h"

#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

namespace {

class StreamsTest : public SandboxTest {
protected:
    void SetUp() override {
        sandbox.AddUnit("a.c", {"finding V501 1 1 first", "finding V502 2 2 second"});
        sandbox.WriteDatabase();
        ASSERT_EQ(sandbox.Analyze({"-q", "-o", "r.json"}).exitCode, 0);
    }

    /// The words of another command of the driver.
    static Arguments Command(const Arguments& words) {
        Arguments command = {Sandbox::AnalyzeCommand({}).front()};
        command.insert(command.end(), words.begin(), words.end());
        return command;
    }

    /// Runs `analyze` with the fake core from within a shell command, in which "$@" stands for it.
    [[nodiscard]] RunResult AnalyzeWithin(const std::string& shellCommand, const Arguments& options) const {
        Arguments command{"/bin/bash", "-c", shellCommand, "bash"};
        const Arguments analyze = Sandbox::AnalyzeCommand(options);
        command.insert(command.end(), analyze.begin(), analyze.end());
        return RunningDriver(command, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
    }
};

// Each command reads a pipe that somebody has opened and does not write to.
TEST_F(StreamsTest, AWaitForAPipeEndsWhenItIsToEnd) {
    const std::string pipe = sandbox.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const Arguments commands[] = {
        Command({"suppress", "pipe", "-o", "base.json"}),
        Command({"filter-suppressed", "r.json", "-s", "pipe", "-o", "out.json"}),
        Sandbox::AnalyzeCommand({"-c", "pipe"}),
        Sandbox::AnalyzeCommand({"-S", "pipe"}),
        Sandbox::AnalyzeCommand({"-s", "pipe"}),
        Sandbox::AnalyzeCommand({"-f", "pipe"}),
        Sandbox::AnalyzeCommand({"-f", "pipe.json"}),
    };
    std::filesystem::create_symlink("pipe", sandbox.Path("pipe.json"));
    for (const Arguments& command : commands) {
        RunningDriver run(command, sandbox.Path(), sandbox.DriverEnvironment());
        int writer = -1; // can be opened when somebody reads
        EXPECT_TRUE(HoldsSoon([&] {
            writer = ::open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return writer >= 0;
        }));
        run.AskToEnd();
        const RunResult result = run.Wait();
        EXPECT_EQ(result.exitCode, 130) << CommandLineText(command) << result;
        ::close(writer);
    }
    EXPECT_FALSE(sandbox.Exists("base.json"));
    EXPECT_FALSE(sandbox.Exists("out.json"));
}

// A second opening would wait for a writer that has gone.
TEST_F(StreamsTest, ADatabaseMayComeThroughAPipe) {
    ASSERT_EQ(::mkfifo(sandbox.Path("pipe.json").c_str(), 0600), 0);
    const RunResult result =
        AnalyzeWithin("cat compile_commands.json > pipe.json & exec \"$@\"", {"-f", "pipe.json", "-o", "r.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("Compiler invocations: 1 (1 analyzed")) << result;
}

TEST_F(StreamsTest, AnEndlessDeviceIsRefused) {
    std::filesystem::create_symlink("/dev/zero", sandbox.Path("zero.json"));
    const std::pair<Arguments, const char*> cases[] = {
        {{"-S", "/dev/zero"}, "Error: /dev/zero: it is no file, pipe or terminal\n"},
        {{"-c", "/dev/zero"}, "Error: Can't open config file /dev/zero\n"},
        {{"-f", "/dev/zero"}, "Error: Couldn't open file /dev/zero\nIt is no file, pipe or terminal\n"},
        {{"-f", "zero.json"}, "Error: Couldn't open file zero.json\nIt is no file, pipe or terminal\n"},
    };
    for (const auto& [options, message] : cases) {
        const RunResult result = sandbox.Analyze(options);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(result.Says(message)) << result;
    }
}

TEST_F(StreamsTest, FindingsOnStandardOutputAreAReport) {
    const RunResult alone = sandbox.Analyze({"-o", "-"});
    EXPECT_EQ(alone.exitCode, 0) << alone;
    EXPECT_EQ(FindingsOfLines(alone.output).size(), 2U) << alone;
    EXPECT_NE(alone.errors.find("Findings: "), std::string::npos) << alone;

    const RunResult full = AnalyzeWithin("exec \"$@\" > /dev/full", {"-q"});
    EXPECT_EQ(full.exitCode, 1) << full;
    EXPECT_EQ(full.errors, "Error: Can't write to file: standard output: No space left on device\n");

    sandbox.AddUnit("b.c", {"hang"}); // a run that does not stop comes to no end
    sandbox.WriteDatabase();
    const RunResult closed = AnalyzeWithin("\"$@\" | true; exit ${PIPESTATUS[0]}", {"-q", "-j", "2"});
    EXPECT_EQ(closed.exitCode, 1) << closed;
    EXPECT_EQ(closed.errors, "Error: Can't write to file: standard output: Broken pipe\n");
}

TEST_F(StreamsTest, AnOpenFileOfTheCallerTakesTheReportWhereItStands) {
    const RunResult result = AnalyzeWithin("{ echo before; \"$@\"; echo behind; } > all", {"-q", "-o", "/dev/stdout"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::string all = sandbox.Read("all");
    EXPECT_TRUE(all.starts_with("before\n")) << all;
    EXPECT_TRUE(all.ends_with("\nbehind\n")) << all;
    EXPECT_EQ(std::count(all.begin(), all.end(), '{'), 4) << all;
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(StreamsTest, AnOutputThatIsAnInputIsRefused) {
    std::filesystem::create_hard_link(sandbox.Path("compile_commands.json"), sandbox.Path("name.json"));
    std::filesystem::create_symlink("r.json", sandbox.Path("link.json"));
    std::filesystem::create_hard_link(sandbox.Path("a.c"), sandbox.Path("of-source"));
    std::filesystem::create_symlink("a.c", sandbox.Path("source-link"));
    const std::string source = sandbox.Read("a.c");
    const Arguments commands[] = {
        Sandbox::AnalyzeCommand({"-o", "name.json"}),
        Sandbox::AnalyzeCommand({"-f", ".", "-o", "name.json"}),
        Sandbox::AnalyzeCommand({"-o", "a.c"}),
        Sandbox::AnalyzeCommand({"--dump-json", "of-source"}),
        Sandbox::AnalyzeCommand({"--dump-log", "source-link"}),
        Sandbox::AnalyzeCommand({"-s", "r.json", "-o", "link.json"}),
        Command({"suppress", "r.json", "-o", "link.json"}),
        Command({"filter-suppressed", "name.json", "-s", "compile_commands.json"}),
    };
    const std::string report = sandbox.Read("r.json");
    const std::string database = sandbox.Read("compile_commands.json");
    for (const Arguments& command : commands) {
        const RunResult result = RunningDriver(command, sandbox.Path(), sandbox.DriverEnvironment()).Wait();
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(" would replace a file that is read: ")) << CommandLineText(command) << result;
    }
    EXPECT_EQ(sandbox.Read("r.json"), report);
    EXPECT_EQ(sandbox.Read("a.c"), source);
    EXPECT_EQ(sandbox.Read("compile_commands.json"), database);
}

} // namespace

} // namespace Orvanta
