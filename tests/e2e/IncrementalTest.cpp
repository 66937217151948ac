// Guards against an incremental run that misses a change, runs more than what changed, or leaves a report with holes.

#include "e2e/support/IncrementalTest.h"

#include "platform/Environment.h"
#include "platform/Files.h"

#include <chrono>
#include <filesystem>

namespace Orvanta {

namespace {

/// A file that is written, and the sources that it touches.
struct Change {
    const char* name;
    const char* file;
    const char* text;
    int hoursLater; // than the clock says
    Names analyzed;
};

void WriteLater(const Sandbox& sandbox, const std::string& file, const std::string& text, int hours) {
    sandbox.Write(file, text);
    const std::filesystem::path path = NativePath(sandbox.Path(file));
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::hours(hours));
}

const Change Changes[] = {
    {"a header that two include", "common.h", "int common2;\n", 0, {"a.c", "b.c"}},
    {"a header behind another", "inner.h", "int inner2;\n", 0, {"a.c"}},
    {"a source", "c.c", "int c2;\n", 0, {"c.c"}},
    {"another include", "c.c", "#include \"inner.h\"\n", 0, {"c.c"}},
    {"a header newly included", "inner.h", "int inner3;\n", 0, {"a.c", "c.c"}},
    {"the size stays", "common.h", "int common3;\n", 0, {"a.c", "b.c"}},
    {"a settings file", "settings.cfg", "timeout=5\n", 0, {}},
    {"a later time, equal content", "common.h", "int common3;\n", 1, {}},
    {"a time in the future", "common.h", "int common4;\n", 1, {"a.c", "b.c"}},
};

TEST_F(IncrementalTest, RunsExactlyWhatAChangeTouchesAndKeepsTheReportWhole) {
    MakeCleanFolder();
    const RunResult first = Incremental();
    ASSERT_EQ(first.exitCode, 0) << first;
    EXPECT_TRUE(first.Says("Couldn't find depend_info.json. Generating new one\n")) << first;
    EXPECT_TRUE(first.Says("%] Parsing includes: " + sandbox.Path("a.c"))) << first;
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c", "c.c"}));
    for (const Change& change : Changes) {
        WriteLater(sandbox, change.file, change.text, change.hoursLater);
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
        {"settings", {"-a", "64"}},
        {"environment", {"-E", "CPATH=x"}},
    };
    for (const auto& [what, words] : options) {
        EXPECT_EQ(Incremental(words).exitCode, 0);
        EXPECT_EQ(Analyzed().size(), 5U) << what;
        EXPECT_EQ(Incremental(words).exitCode, 0);
        EXPECT_EQ(Analyzed(), Names{}) << what;
    }
    for (const auto& [name, value] :
         {std::pair("CPATH", sandbox.Path()), std::pair("MACOSX_DEPLOYMENT_TARGET", std::string("11")),
          std::pair("FAKE_CORE_VERSION", std::string("2"))}) {
        sandbox.SetVariable(name, value);
        EXPECT_EQ(Incremental().exitCode, 0);
        EXPECT_EQ(Analyzed().size(), 5U) << name;
    }
    for (const char* const name :
         {"SOME_TERMINAL_ID", "CCC_OVERRIDE_OPTIONS", "PATH"}) { // the last two: not of this compiler
        sandbox.SetVariable(name, EnvironmentVariable(name).value_or("x") + "y");
        EXPECT_EQ(Incremental().exitCode, 0);
        EXPECT_EQ(Analyzed(), Names{}) << name;
    }
}

/// Writes over a file what is as long, and gives it the time that it had.
void ReplaceUnseen(const Sandbox& sandbox, const std::string& file, const std::string& text) {
    const std::filesystem::path path = NativePath(sandbox.Path(file));
    const auto time = std::filesystem::last_write_time(path);
    ASSERT_EQ(sandbox.Read(file).size(), text.size());
    sandbox.Write(file, text);
    std::filesystem::last_write_time(path, time);
}

TEST_F(IncrementalTest, RunsWhatFilesBehindTheCommandChange) {
    AddSource("d.c", "int d;\n", {"-specs=own.specs", "-Btools-of-mine"});
    sandbox.Write("own.specs", "one");
    const std::string compiler = "tools/fake-gcc";
    sandbox.Write(compiler, sandbox.Read(compiler) + "1");
    for (int run = 0; run < 2; ++run) { // a file that has just been written is known in the second
        ASSERT_EQ(Incremental().exitCode, 0);
    }
    EXPECT_EQ(Analyzed(), Names{});
    const auto expect = [this](const char* what, const Names& analyzed) {
        EXPECT_EQ(Incremental().exitCode, 0);
        EXPECT_EQ(Analyzed(), analyzed) << what;
        EXPECT_EQ(Incremental().exitCode, 0);
    };
    ReplaceUnseen(sandbox, "own.specs", "two");
    expect("specs of equal size and time", {"d.c"});
    sandbox.Write("tools-of-mine/own.specs", "three");
    expect("specs that come before them", {"d.c"});
    sandbox.Write("tools-of-mine/specs", "four");
    expect("specs without a flag", {"d.c"});
    std::string other = sandbox.Read(compiler);
    other.back() = '2';
    ReplaceUnseen(sandbox, compiler, other);
    expect("a compiler of equal size and time", {"a.c", "b.c", "c.c", "d.c"});
    WriteLater(sandbox, compiler, other, 0);
    expect("a compiler that was installed again", {});
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

    std::string changed = report;
    changed[changed.find("V501")] = 'X';
    ReplaceUnseen(sandbox, "report.json", changed);
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(sandbox.Read("report.json"), report) << "changed, with the size and the time that it had";
    sandbox.Write("other.json", changed);
    std::filesystem::rename(NativePath(sandbox.Path("other.json")), path);
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(sandbox.Read("report.json"), report) << "another one in its place";
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
    sandbox.Write("data.txt", "another");
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"c.c"}) << "it stays";

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
    const Arguments ways[] = {{}, {"-i"}, {"--dep-file", "common.h"}, {"--intermodular"}};
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
    sandbox.WriteScript("b.c", {});
    std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta")));
    sandbox.Write(".Orvanta", "a file");
    const RunResult unsaved = sandbox.Analyze({"--regenerate-depend-info", "skip-analysis", "-o", "report.json"});
    EXPECT_EQ(unsaved.exitCode, 1) << "all that it was for is lost" << unsaved;
    EXPECT_FALSE(unsaved.Says(" are saved to ")) << unsaved;
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

TEST_F(IncrementalTest, KeepsWhatIsKnownOfUnitsThatAreNotInTheRun) {
    MakeCleanFolder();
    sandbox.AddCompiler("other-gcc", "fake-gcc (Fake) 12.2.0\n");
    Entry entry{{sandbox.Path("tools/other-gcc"), "-c", sandbox.Path("c.c")}};
    sandbox.AddEntry(entry); // the source of another unit as well
    ASSERT_EQ(Incremental().exitCode, 0);
    for (const char* const name : {"other-gcc", "fake-gcc"}) {
        EXPECT_EQ(Incremental({"-C", name}).exitCode, 0);
        EXPECT_EQ(Analyzed(), Names{}) << name;
    }
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{});
    ExpectReportOfCleanRun();
}

/// What stands where a file of ".Orvanta" belongs, and whether a run that succeeds puts its own there.
struct Obstacle {
    const char* file;
    const char* text; ///< null: a folder that holds something
};

// Whatever stands there, the report is that of a clean run, and a line names the file.
TEST_F(IncrementalTest, DamageOfWhatIsKeptCostsTimeOnly) {
    MakeCleanFolder();
    const Obstacle rows[] = {
        {".Orvanta/depend_info.json", nullptr},
        {".Orvanta/depend_info.json", "[{"},
        {".Orvanta/unit_history.bin", nullptr},
        {".Orvanta/unit_history.bin", "cut"},
        {".Orvanta/findings-1", nullptr},
        {".Orvanta/findings-1", "cut"},
        {".Orvanta/report.mark", nullptr},
        {".Orvanta/report.mark", "1 2 3"},
        {".Orvanta", "a file"},
        {".Orvanta/.orvtmp-clock", nullptr},
    };
    for (const Obstacle& row : rows) {
        std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta")));
        ASSERT_EQ(Incremental().exitCode, 0);
        sandbox.Write("c.c", std::string("int c;\n// ") + row.file + (row.text == nullptr ? "" : row.text) + "\n");
        std::filesystem::remove_all(NativePath(sandbox.Path(row.file)));
        if (row.text == nullptr) {
            sandbox.Write(std::string(row.file) + "/held", "");
        } else {
            sandbox.Write(row.file, row.text);
        }
        for (int run = 0; run < 2; ++run) {
            const RunResult result = Incremental();
            EXPECT_EQ(result.exitCode, 0) << row.file << result;
            EXPECT_TRUE(result.Says("Compiler invocations: 3 (")) << row.file << result;
            const std::size_t told = result.Count("Warning: " + sandbox.Path(row.file) + ": ") +
                                     result.Count("Couldn't read depend_info.json\n");
            EXPECT_LE(told, std::string_view(row.file).ends_with("depend_info.json") ? 2U : 1U) << row.file << result;
            const bool isSilent =
                std::string_view(row.file).ends_with("mark") || std::string_view(row.file).ends_with("clock");
            EXPECT_TRUE(told > 0 || run > 0 || isSilent) << row.file << result;
            ExpectReportOfCleanRun();
        }
    }
}

} // namespace

} // namespace Orvanta
