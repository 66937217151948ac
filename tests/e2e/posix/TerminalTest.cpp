// Guards against a status line that wraps, that stays behind, that mixes with messages, or that shows where none is
// asked for.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/KeptCosts.h"
#include "e2e/support/SandboxTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvanta {

namespace {

/// A run of `analyze` on a terminal of its own.
class TerminalRun {
public:
    TerminalRun(const Sandbox& sandbox, const Arguments& options, unsigned short columns,
                const char* terminal = "xterm") {
        sandbox.WriteDatabase();
        Arguments command = Sandbox::AnalyzeCommand(options);
        Environment environment = sandbox.DriverEnvironment();
        environment["TERM"] = terminal;
        std::vector<std::string> variables = EnvironmentBlock(environment).Entries();
        std::vector<char*> arguments = Pointers(command);
        std::vector<char*> entries = Pointers(variables);
        winsize size = SizeOf(columns);
        process_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
        if (process_ == 0) {
            if (::chdir(sandbox.Path().c_str()) == 0) {
                ::execve(arguments.front(), arguments.data(), entries.data());
            }
            ::_exit(1);
        }
        if (process_ < 0) {
            throw std::runtime_error("can't start on a terminal");
        }
    }

    ~TerminalRun() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
        ::close(terminal_);
    }

    TerminalRun(const TerminalRun&) = delete;
    TerminalRun& operator=(const TerminalRun&) = delete;

    void Resize(unsigned short columns) const {
        const winsize size = SizeOf(columns);
        ::ioctl(terminal_, TIOCSWINSZ, &size);
    }

    void Type(std::string_view keys) const {
        ASSERT_EQ(::write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    /// Whether the program has written `text` by now.
    [[nodiscard]] bool Says(std::string_view text) {
        Receive(0);
        return written_.find(text) != std::string::npos;
    }

    /// Waits for its end; returns its code.
    int Wait() {
        while (Receive(-1)) {
        }
        int status = 0;
        ::waitpid(std::exchange(process_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    [[nodiscard]] const std::string& Written() const { return written_; }

    /// What a person sees in the end, on a terminal that is wide enough.
    [[nodiscard]] std::string Screen() const {
        std::string screen;
        std::string line;
        std::size_t column = 0;
        for (std::size_t at = 0; at < written_.size(); ++at) {
            if (written_[at] == '\r') {
                column = 0;
            } else if (written_[at] == '\n') {
                screen += line + '\n';
                line.clear();
            } else if (written_.compare(at, 3, "\x1b[K") == 0) {
                line.resize(column);
                at += 2;
            } else {
                line.resize(std::max(line.size(), column + 1));
                line[column++] = written_[at];
            }
        }
        return screen + line;
    }

    /// The status lines that were written alone, each once.
    [[nodiscard]] std::vector<std::string> Statuses() const {
        std::vector<std::string> statuses;
        for (std::size_t begin = written_.find("\r["); begin != std::string::npos;
             begin = written_.find("\r[", begin + 1)) {
            statuses.push_back(written_.substr(begin + 1, written_.find_first_of("\x1b\r\n", begin + 1) - begin - 1));
        }
        return statuses;
    }

private:
    static std::vector<char*> Pointers(std::vector<std::string>& words) {
        std::vector<char*> pointers;
        for (std::string& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        return pointers;
    }

    static winsize SizeOf(unsigned short columns) {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = columns;
        return size;
    }

    // False at the end of all that the program writes.
    bool Receive(int milliseconds) {
        pollfd event = {terminal_, POLLIN, 0};
        char block[4096];
        while (::poll(&event, 1, milliseconds) > 0) {
            const ssize_t count = ::read(terminal_, block, sizeof block);
            if (count <= 0) {
                return false;
            }
            written_.append(block, static_cast<std::size_t>(count));
            milliseconds = 0;
        }
        return true;
    }

    int terminal_ = -1;
    pid_t process_ = -1;
    std::string written_;
};

class TerminalTest : public SandboxTest {
protected:
    void SetUp() override {
        sandbox.AddUnit("a.c", {"finding V501 1 1 found", "stdout of the core"});
        sandbox.AddUnit("b.c", {"wait-for " + sandbox.Path("go-on")});
        LeaveCosts(sandbox, {{"a.c", 0}, {"b.c", 5000}});
    }

    // Lets b.c go on once the status says that it runs alone.
    void GoOnWhenShown(TerminalRun& run, std::string_view sign) const {
        EXPECT_TRUE(HoldsSoon([&] { return run.Says(sign); })) << run.Written();
        sandbox.Write("go-on", "");
    }

    // As redirected output has it, but for the times.
    [[nodiscard]] static std::string WithoutTimes(const std::string& text) {
        std::string kept;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            kept += line.find(" 0:0") == std::string::npos ? line + '\n' : "";
        }
        return kept;
    }
};

TEST_F(TerminalTest, TheStatusStaysBelowTheLinesAndGoes) {
    TerminalRun both(sandbox, {"-j", "2", "--show", "0", "-o", "report.json"}, 200);
    EXPECT_TRUE(HoldsSoon([&] { return both.Says("50%] Analyzing: "); })) << both.Written();
    GoOnWhenShown(both, "[1/2] 1 running, 1:23:");
    EXPECT_EQ(both.Wait(), 0);
    std::filesystem::remove(sandbox.Path("go-on"));
    InterruptibleRun redirected(sandbox, {"-j", "2", "--show", "0", "-o", "other.json"});
    EXPECT_TRUE(HoldsSoon([&] { return redirected.OutputSoFar().find("50%] Analyzing: ") != std::string::npos; }));
    sandbox.Write("go-on", "");
    std::string expected = redirected.Wait().output;
    EXPECT_EQ(expected.find('\r'), std::string::npos);
    expected.insert(expected.find('\n') + 1, "2 files to analyze, 2 at a time\n");
    expected.replace(expected.find("other.json"), 10, "report.json");
    EXPECT_EQ(WithoutTimes(both.Screen()), WithoutTimes(expected + "Slowest files:\n")) << both.Written();

    TerminalRun status(sandbox, {"--progress", "status", "-j", "2", "-o", "report.json"}, 200);
    EXPECT_EQ(status.Wait(), 0);
    EXPECT_EQ(status.Screen().find("Analyzing: "), std::string::npos) << status.Screen();
    EXPECT_EQ(status.Screen().find("running"), std::string::npos) << status.Screen();
    EXPECT_NE(status.Screen().find("Analysis finished in "), std::string::npos) << status.Screen();
    for (const auto& [options, terminal] :
         {std::pair<Arguments, const char*>{{"--progress", "lines"}, "xterm"}, {{"-q"}, "xterm"}, {{}, "dumb"}}) {
        Arguments all = {"--show", "0", "-o", "report.json"};
        all.insert(all.end(), options.begin(), options.end());
        TerminalRun none(sandbox, all, 200, terminal);
        EXPECT_EQ(none.Wait(), 0);
        EXPECT_EQ(none.Written().find("running"), std::string::npos) << none.Written();
        EXPECT_EQ(none.Written().find('\x1b'), std::string::npos) << none.Written();
    }
}

TEST_F(TerminalTest, TheStatusNeverWrapsWhateverTheWidth) {
    TerminalRun run(sandbox, {"-j", "2", "--show", "0", "-o", "report.json"}, 30);
    EXPECT_TRUE(HoldsSoon([&] { return run.Says("[1/2] 1 running, 1:2"); })) << run.Written();
    run.Resize(18);
    EXPECT_TRUE(HoldsSoon([&] { return run.Says("\r[1/2] 1 running\x1b[K"); })) << run.Written();
    run.Resize(10);
    EXPECT_TRUE(HoldsSoon([&] { return run.Says("\r[1/2]\x1b[K"); })) << run.Written();
    run.Resize(3);
    GoOnWhenShown(run, "\r\x1b[K");
    EXPECT_EQ(run.Wait(), 0);
    for (const std::string& status : run.Statuses()) {
        EXPECT_LT(status.size(), 30U) << status;
    }
}

TEST_F(TerminalTest, CtrlCLeavesNothingOfTheStatus) {
    TerminalRun run(sandbox, {"-j", "2", "--show", "0", "-o", "report.json"}, 80);
    EXPECT_TRUE(HoldsSoon([&] { return run.Says("[1/2] 1 running"); })) << run.Written();
    run.Type("\x03");
    EXPECT_EQ(run.Wait(), 130);
    const std::string screen = run.Screen();
    EXPECT_NE(screen.find("Stopping analysis. This might take a while...\n"), std::string::npos) << screen;
    EXPECT_EQ(screen.find("running"), std::string::npos) << screen;
}

} // namespace

} // namespace Orvanta
