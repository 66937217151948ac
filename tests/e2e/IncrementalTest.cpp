// Guards against an incremental run that misses a change, runs more than what changed, or leaves a report with holes.

#include "e2e/support/SandboxTest.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <functional>

namespace Orvanta {

namespace {

class IncrementalTest : public SandboxTest {
protected:
    static constexpr const char* NothingModified = "Nothing to analyze - no modified files were found.\n";

    IncrementalTest() {
        sandbox.Write("common.h", "int common;\n");
        sandbox.Write("inner.h", "int inner;\n");
        sandbox.Write("outer.h", "#include \"inner.h\"\n");
        AddSource("a.c", "#include \"common.h\"\n#include \"outer.h\"\nint a;\n");
        AddSource("b.c", "#include \"common.h\"\nint b;\n");
        AddSource("c.c", "int c;\n");
    }

    void AddSource(const std::string& name, const std::string& text, const Arguments& arguments = {}) {
        sandbox.AddUnit(name, {}, arguments);
        sandbox.Write(name, text);
    }

    RunResult Incremental(const Arguments& more = {}) {
        sandbox.ForgetCoreCalls();
        Arguments options = {"-i", "-o", "report.json"};
        options.insert(options.end(), more.begin(), more.end());
        return sandbox.Analyze(options);
    }

    /// The names of the sources that the last run analyzed.
    [[nodiscard]] std::vector<std::string> Analyzed() const {
        std::vector<std::string> names;
        for (const std::string& path : sandbox.AnalyzedSources()) {
            names.emplace_back(FileNameOf(path));
        }
        return names;
    }

    /// The names of the sources whose dependencies the last run listed.
    [[nodiscard]] std::vector<std::string> Listed() const {
        std::vector<std::string> names;
        for (const CoreCall& call : sandbox.CoreCalls()) {
            if (call.arguments.back() == "--skip-analysis") {
                names.emplace_back(FileNameOf(call.Setting("source-file")));
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /// A report equals that of a full run by somebody who has never run before.
    void ExpectReportOfCleanRun() {
        EXPECT_EQ(sandbox.Analyze({"-q", "-o", "clean/report.json"}).exitCode, 0);
        EXPECT_EQ(sandbox.Read("report.json"), sandbox.Read("clean/report.json"));
    }

    [[nodiscard]] nlohmann::json DependencyInfo() const {
        return nlohmann::json::parse(sandbox.Read(".Orvanta/depend_info.json"));
    }

    void MakeCleanFolder() const { sandbox.Write("clean/.keep", ""); }
};

using Names = std::vector<std::string>;

struct Change {
    const char* name;
    std::function<void(Sandbox&)> make;
    Names analyzed;
};

void WriteLater(Sandbox& sandbox, const std::string& file, const std::string& text) {
    sandbox.Write(file, text);
    const std::filesystem::path path = NativePath(sandbox.Path(file));
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::hours(1));
}

TEST_F(IncrementalTest, RunsExactlyWhatAChangeTouchesAndKeepsTheReportWhole) {
    MakeCleanFolder();
    const RunResult first = Incremental();
    ASSERT_EQ(first.exitCode, 0) << first;
    EXPECT_TRUE(first.Says("Couldn't find depend_info.json. Generating new one\n")) << first;
    EXPECT_TRUE(first.Says("%] Parsing includes: " + sandbox.Path("a.c"))) << first;
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c", "c.c"}));
    const Change changes[] = {
        {"a header that two include",   [](Sandbox& box) { box.Write("common.h", "int common2;\n"); },       {"a.c", "b.c"}},
        {"a header behind another",     [](Sandbox& box) { box.Write("inner.h", "int inner2;\n"); },         {"a.c"}       },
        {"a source",                    [](Sandbox& box) { box.Write("c.c", "int c2;\n"); },                 {"c.c"}       },
        {"another include",             [](Sandbox& box) { box.Write("c.c", "#include \"inner.h\"\n"); },    {"c.c"}       },
        {"a header newly included",     [](Sandbox& box) { box.Write("inner.h", "int inner3;\n"); },         {"a.c", "c.c"}},
        {"the size stays",              [](Sandbox& box) { box.Write("common.h", "int common3;\n"); },       {"a.c", "b.c"}},
        {"a settings file",             [](Sandbox& box) { box.Write("settings.cfg", "timeout=5\n"); },      {}            },
        {"a later time, equal content", [](Sandbox& box) { WriteLater(box, "common.h", "int common3;\n"); }, {}            },
        {"a time in the future",        [](Sandbox& box) { WriteLater(box, "common.h", "int common4;\n"); }, {"a.c", "b.c"}},
    };
    for (const Change& change : changes) {
        change.make(sandbox);
        const RunResult result = Incremental();
        EXPECT_EQ(result.exitCode, 0) << change.name << result;
        EXPECT_EQ(Analyzed(), change.analyzed) << change.name << result;
        EXPECT_EQ(result.Says(NothingModified), change.analyzed.empty()) << change.name << result;
        ExpectReportOfCleanRun();
    }
}

TEST_F(IncrementalTest, RunsWhatOtherInputsChange) {
    ASSERT_EQ(Incremental().exitCode, 0);
    AddSource("d.c", "int d;\n");
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"d.c"}) << "a new unit";
    AddSource("d.c", "int d;\n", {"-DOTHER"});
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"d.c"}) << "a second unit of one source";
    const std::pair<const char*, Arguments> options[] = {
        {"settings",    {"-a", "64"}     },
        {"environment", {"-E", "CPATH=x"}},
    };
    for (const auto& [what, words] : options) {
        EXPECT_EQ(Incremental(words).exitCode, 0);
        EXPECT_EQ(Analyzed().size(), 5U) << what;
        EXPECT_EQ(Incremental(words).exitCode, 0);
        EXPECT_EQ(Analyzed(), Names{}) << what;
    }
    sandbox.SetVariable("CPATH", sandbox.Path());
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed().size(), 5U) << "a variable that compilers read";
    sandbox.SetVariable("SOME_TERMINAL_ID", "7");
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{}) << "any other variable";
}

TEST_F(IncrementalTest, RunsAFailedUnitAgain) {
    sandbox.WriteScript("b.c", {"exit 3"});
    EXPECT_EQ(Incremental().exitCode, 1);
    const RunResult again = Incremental();
    EXPECT_EQ(again.exitCode, 1) << again;
    EXPECT_EQ(Analyzed(), Names{"b.c"});
    EXPECT_TRUE(again.Says("3 (0 analyzed, 2 carried over, 1 failed, 0 skipped, 0 excluded)\n")) << again;
    sandbox.WriteScript("b.c", {"finding V501 1 1 mended"});
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"b.c"});
    EXPECT_EQ(Report().size(), 3U);
    std::filesystem::remove(NativePath(sandbox.Path("inner.h")));
    EXPECT_EQ(Incremental().exitCode, 1);
    EXPECT_EQ(MessagesOf(Report()).front(), "Unable to start the analysis on this file.");
    EXPECT_EQ(Report().size(), 3U);
}

TEST_F(IncrementalTest, LeavesTheReportAsItIsUnlessItIsNotWhole) {
    ASSERT_EQ(Incremental().exitCode, 0);
    const std::string report = sandbox.Read("report.json");
    const auto path = NativePath(sandbox.Path("report.json"));
    const auto time = std::filesystem::last_write_time(path);
    const RunResult unchanged = Incremental();
    EXPECT_EQ(unchanged.exitCode, 0) << unchanged;
    EXPECT_TRUE(unchanged.Says(NothingModified)) << unchanged;
    EXPECT_TRUE(unchanged.Says("Compiler invocations: 3 (0 analyzed, 3 carried over, 0 failed")) << unchanged;
    EXPECT_EQ(std::filesystem::last_write_time(path), time);
    EXPECT_EQ(sandbox.Read("report.json"), report);

    std::filesystem::remove(path);
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(sandbox.Read("report.json"), report) << "missing";

    ASSERT_EQ(sandbox.Analyze({"-a", "64", "-e", sandbox.Path("b.c"), "-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(Report().size(), 2U);
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(sandbox.Read("report.json"), report) << "written by another kind of run";
    EXPECT_EQ(Analyzed(), Names{});

    sandbox.ForgetEntries();
    AddSource("a.c", sandbox.Read("a.c"));
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{});
    EXPECT_EQ(Report().size(), 1U) << "units left the build";
    EXPECT_EQ(DependencyInfo().size(), 3U) << "they may be back in the next run";
    std::filesystem::remove(NativePath(sandbox.Path("b.c")));
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(DependencyInfo().size(), 2U) << "not without their source";
}

TEST_F(IncrementalTest, DependencyInfoIsReadAsItStands) {
    ASSERT_EQ(Incremental().exitCode, 0);
    nlohmann::json info = DependencyInfo();
    ASSERT_EQ(info.size(), 3U);
    EXPECT_EQ(info[0]["dependencies"], (nlohmann::json{sandbox.Path("a.c"), sandbox.Path("common.h"),
                                                       sandbox.Path("outer.h"), sandbox.Path("inner.h")}));
    EXPECT_EQ(info[0]["arguments"].size(), 6U);
    EXPECT_TRUE(info[0]["id"].is_string());

    // A user may add what the core can't see; without "id" an entry is found by its arguments.
    info[2]["dependencies"].push_back(sandbox.Path("data.txt"));
    info[2].erase("id");
    sandbox.Write("data.txt", "1");
    sandbox.Write(".Orvanta/depend_info.json", info.dump());
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"c.c"});
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{});

    const std::string faults[] = {"[{\"arguments\": [\"x\"]}]", "[{\"dependencies\": []}]", "{", ""};
    for (const std::string& text : faults) {
        sandbox.Write(".Orvanta/depend_info.json", text);
        const RunResult result = Incremental();
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_TRUE(result.Says("Couldn't read depend_info.json\n")) << text << result;
        EXPECT_EQ(Analyzed().size(), 3U) << text;
    }
}

TEST_F(IncrementalTest, RegenerationListsEveryUnitAnew) {
    const RunResult skips = sandbox.Analyze({"--regenerate-depend-info", "skip-analysis", "-o", "report.json"});
    EXPECT_EQ(skips.exitCode, 0) << skips;
    EXPECT_TRUE(skips.Says("[100%] Parsing includes: ")) << skips;
    EXPECT_EQ(Analyzed(), Names{});
    EXPECT_EQ(DependencyInfo().size(), 3U);
    EXPECT_FALSE(sandbox.Exists("report.json"));
    const Arguments ways[] = {
        {           },
        {"-i"        },
        {"--dep-file", "common.h"},
        {"--intermodular"           }
    };
    for (const Arguments& way : ways) {
        sandbox.ForgetCoreCalls();
        Arguments options = {"--regenerate-depend-info", "run-analysis", "-e", "*c.c", "-o", "report.json"};
        options.insert(options.end(), way.begin(), way.end());
        const RunResult runs = sandbox.Analyze(options);
        EXPECT_EQ(runs.exitCode, 0) << runs;
        EXPECT_EQ(Listed(), (Names{"a.c", "b.c", "c.c"})) << "every unit, and no unit twice" << runs;
        EXPECT_EQ(Analyzed(), (way == Arguments{"-i"} ? Names{} : Names{"a.c", "b.c"})) << runs;
    }
    EXPECT_EQ(sandbox.Analyze({"--regenerate-depend-info", "run-analysis", "-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{}) << "what the analysis saw is kept";
    sandbox.WriteScript("b.c", {"listing exit 4"});
    const RunResult fails = sandbox.Analyze({"--regenerate-depend-info", "skip-analysis", "-o", "report.json"});
    EXPECT_EQ(fails.exitCode, 1) << fails;
    EXPECT_TRUE(fails.Says("These could not be analyzed:\n  " + sandbox.Path("b.c") + ": ")) << fails;
}

TEST_F(IncrementalTest, AKilledRunsReportHoldsWhatDidNotHaveToRun) {
    ASSERT_EQ(Incremental().exitCode, 0);
    const std::vector<Finding> before = Report();
    std::filesystem::remove(NativePath(sandbox.Path("report.json")));
    sandbox.Write("c.c", "int changed;\n");
    sandbox.WriteScript("c.c", {"hang"});
    const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze({"-i", "-j", "1", "-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("records/core-of-c.c.hangs"); }));
    run->Kill();
    EXPECT_EQ(Report(), (std::vector<Finding>{before[0], before[1]}));
}

TEST_F(IncrementalTest, OnlyOneRunUsesWhatIsKept) {
    sandbox.WriteScript("a.c", {"touch " + sandbox.Path("started"), "wait-for " + sandbox.Path("go-on")});
    const std::unique_ptr<RunningDriver> first = sandbox.StartAnalyze({"-i", "-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("started"); }));
    for (const char* const option : {"-i", "--dump-files", "--intermodular"}) {
        const RunResult second = sandbox.Analyze({option, "-o", "other.json"});
        EXPECT_EQ(second.exitCode, 1) << second;
        EXPECT_TRUE(second.Says("Error: Another run is using " + sandbox.Path(".Orvanta") + "\n")) << second;
    }
    sandbox.Write("go-on", "");
    EXPECT_EQ(first->Wait().exitCode, 0);
}

} // namespace

} // namespace Orvanta
