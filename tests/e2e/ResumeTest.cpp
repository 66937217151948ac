// Guards against a run that goes on with what is not so any more, that analyzes again what it need not, or whose report
// is not the one of a run that was never interrupted.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <filesystem>
#include <functional>

namespace Orvanta {

namespace {

class ResumeTest : public SandboxTest {
protected:
    // The fake compiler writes its command into the text: with the files of units kept, that is the same in every run.
    static Arguments With(Arguments more) {
        more.insert(more.end(), {"--dump-files", "-j", "1", "-o", "report.json"});
        return more;
    }

    /// Three units, of which the third hangs.
    void AddUnits() {
        sandbox.AddUnit("a.c", {"finding V501 1 1 first"});
        sandbox.AddUnit("b.c", {"finding V501 1 2 second", "finding V502 2 2 third"});
        sandbox.AddUnit("c.c", {"finding V501 1 1 unfinished", "hang"});
    }

    [[nodiscard]] bool IsHanging() const { return sandbox.Exists("records/core-of-c.c.hangs"); }

    void KillAtThird() {
        // Its costs would let the third begin first.
        std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta")));
        const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze(With({}));
        ASSERT_TRUE(HoldsSoon([&] { return IsHanging(); }));
        run->Kill();
        sandbox.WriteScript("c.c", {"finding V501 1 1 fourth"});
        std::filesystem::remove(NativePath(sandbox.Path("records/core-of-c.c.hangs")));
        sandbox.ForgetCoreCalls();
    }

    /// The names of the sources that were analyzed since the kill.
    [[nodiscard]] std::vector<std::string> Analyzed() const {
        std::vector<std::string> names;
        for (const std::string& path : sandbox.AnalyzedSources()) {
            names.emplace_back(FileNameOf(path));
        }
        return names;
    }

    [[nodiscard]] std::string Journal() const {
        for (const auto& entry : std::filesystem::directory_iterator(NativePath(sandbox.Path(".Orvanta")))) {
            if (entry.path().extension() == ".journal") {
                return PathText(entry.path());
            }
        }
        return "";
    }
};

TEST_F(ResumeTest, RunsWhatIsNotFinishedOrHasChanged) {
    const std::vector<std::string> all = {"a.c", "b.c", "c.c"};

    struct Case {
        std::function<void()> change;
        std::vector<std::string> analyzed;
        const char* said;
        Arguments options = {};
    };

    const Case cases[] = {
        {[] {}, {"c.c"}, "1 analyzed, 2 carried over"},
        // Its text may be the same, but cores look at the files, too.
        {[&] { sandbox.Write("a.c", sandbox.Read("a.c")); }, {"a.c", "c.c"}, "2 analyzed, 1 carried over"},
        {[&] { std::filesystem::resize_file(Journal(), std::filesystem::file_size(Journal()) - 3); },
         {"b.c", "c.c"},
         "2 analyzed, 1 carried over"},
        {[&] { std::filesystem::resize_file(Journal(), 30); }, all,
         "files are analyzed: what the interrupted run has left"},
        {[&] { std::filesystem::remove(Journal()); }, all, "files are analyzed: no interrupted run has left anything"},
        {[] {}, all, "files are analyzed: the settings, the core or this program's version", {"-a", "MISRA"}},
        {[&] { sandbox.AddUnit("d.c"); },
         {"a.c", "b.c", "c.c", "d.c"},
         "files are analyzed: the build description or a compiler has changed"},
    };
    AddUnits();
    for (const auto& [change, analyzed, said, options] : cases) {
        SCOPED_TRACE(said);
        sandbox.WriteScript("c.c", {"finding V501 1 1 unfinished", "hang"});
        KillAtThird();
        change();
        Arguments resumed = With({"--resume"});
        resumed.insert(resumed.end(), options.begin(), options.end());
        const RunResult result = sandbox.Analyze(resumed);
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_TRUE(result.Says(said)) << result;
        EXPECT_EQ(Analyzed(), analyzed);
        EXPECT_EQ(Journal(), "") << "the journal of a run that has ended";
        Arguments clean = {"-o", "clean.json"};
        clean.insert(clean.end(), options.begin(), options.end());
        EXPECT_EQ(sandbox.Analyze(clean).exitCode, 0);
        EXPECT_EQ(sandbox.Read("report.json"), sandbox.Read("clean.json"));
    }
}

TEST_F(ResumeTest, IsNamedAfterAnInterruptionAndMayBeInterruptedAgain) {
    AddUnits();
    sandbox.AddUnit("d.c", {"finding V501 1 1 last"});
    for (const char* const option : {"--verbose", "--resume"}) {
        InterruptibleRun run(sandbox, With({option}));
        ASSERT_TRUE(HoldsSoon([&] { return IsHanging(); }));
        run.Interrupt();
        const RunResult result = run.Wait();
        EXPECT_EQ(result.exitCode, 130) << result;
        EXPECT_TRUE(result.Says("\nWhat is finished is kept: the same command with --resume goes on from here.\n"));
        std::filesystem::remove(NativePath(sandbox.Path("records/core-of-c.c.hangs")));
    }
    sandbox.WriteScript("c.c", {"finding V501 1 1 fourth"});
    sandbox.ForgetCoreCalls();
    EXPECT_EQ(sandbox.Analyze(With({"--resume"})).exitCode, 0);
    EXPECT_EQ(Analyzed(), (std::vector<std::string>{"c.c", "d.c"}));
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"first", "second", "third", "fourth", "last"}));
}

TEST_F(ResumeTest, IsRefusedWhereItMeansNothing) {
    sandbox.AddUnit("a.c");
    for (const char* const option : {"--incremental", "--intermodular"}) {
        const RunResult result = sandbox.Analyze({"--resume", option, "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says("Flags --resume and " + std::string(option) + " cannot be used together")) << result;
    }
    const RunResult result = sandbox.Analyze({"--resume"});
    EXPECT_TRUE(result.Says("Nothing to resume, all files are analyzed: the report is no file") ||
                result.errors.find("the report is no file") != std::string::npos)
        << result;
}

} // namespace

} // namespace Orvanta
