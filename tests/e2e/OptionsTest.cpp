// Guards against options that are accepted and then do nothing, that lose against the settings file, or whose errors
// come too late or name the wrong thing.

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"

#include <algorithm>
#include <filesystem>

namespace Orvanta {

namespace {

class OptionsTest : public SandboxTest {
protected:
    /// The settings that the core got for the only unit.
    CoreCall OnlyCall() const {
        const std::vector<CoreCall> calls = sandbox.CoreCalls();
        EXPECT_EQ(calls.size(), 1U);
        return calls.empty() ? CoreCall{} : calls.front();
    }
};

struct OptionError {
    Arguments options;
    const char* message;
};

TEST_F(OptionsTest, FirstFaultEndsTheRunWithItsText) {
    sandbox.AddUnit("a.c");
    sandbox.Write("list.txt", "a.c\n");
    const OptionError cases[] = {
        {{"-c", "no.cfg", "-S", "no.txt"}, "Config file doesn't exist: "},
        {{"-c", "no.cfg", "-i", "-S", "list.txt"}, "Config file doesn't exist: "},
        {{"-S", "no.txt", "-i"}, "List of files to analyze doesn't exist: "},
        {{"--orvanta-path", "no-core", "-i", "-S", "list.txt"}, "Specified path to Orvanta doesn't exist: "},
        {{"-i", "--intermodular", "-S", "list.txt"}, "Flags --incremental and --source-files cannot be used together"},
        {{"--intermodular", "-S", "list.txt"}, "Flags --source-files and --intermodular cannot be used together"},
        {{"-i", "--intermodular"}, "Flags --incremental and --intermodular cannot be used together"},
        {{"-a", "ga"}, "Wrong diagnostic group name: 'ga'"},
        {{"-a", ""}, "Diagnostic group name is empty!"},
        {{"-a", "256"}, "Diagnostic group parameter was entered as number and was greater than 255."},
        {{"--engines", "gcc"},
         "Wrong value of --engines: \"gcc\", expected \"cppcheck\", \"clang\" or both, joined by ','"},
        {{"-f", "no.json"}, "Couldn't open file "},
        {{"-C", "othercc"}, "No source file to analyze"},
    };
    for (const OptionError& bad : cases) {
        Arguments options{"analyze"};
        options.insert(options.end(), bad.options.begin(), bad.options.end());
        sandbox.WriteDatabase();
        const RunResult result = sandbox.Run(options);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(std::string("Error: ") + bad.message)) << bad.message << result;
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

TEST_F(OptionsTest, NumberOfThreadsMustBePositive) {
    sandbox.AddUnit("a.c");
    for (const char* const number : {"0", "-1", "x", "2x", ""}) {
        const RunResult result = sandbox.Analyze({std::string("--threads=") + number});
        EXPECT_EQ(result.exitCode, 1) << number << result;
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

struct Precedence {
    const char* key;
    const char* byDefault;
    const char* fileLine;
    const char* fromFile;
    Arguments option;
    const char* fromOption;
};

TEST_F(OptionsTest, OptionBeatsSettingsFileBeatsDefault) {
    const Precedence cases[] = {
        {"analysis-mode", "4", "analysis-mode = GA;OP", "12", {"-a", "MISRA"}, "32"},
        {"platform", "x64", "platform=linux32", "linux32", {"--platform", "arm"}, "arm"},
        {"preprocessor", "gcc", "preprocessor=clang", "clang", {"-p", "other"}, "other"},
        {"engines", "(absent)", "engines=cppcheck", "cppcheck", {"--engines", "clang,cppcheck"}, "clang,cppcheck"},
        {"no-noise", "(absent)", "no-noise=a = b", "a = b", {}, "a = b"},
    };
    for (const Precedence& row : cases) {
        Sandbox own;
        own.AddUnit("a.c");
        own.Write("my.cfg", std::string("# mine\n") + row.fileLine + "\n");
        const auto value = [&](Arguments options) {
            options.emplace_back("-q");
            const RunResult result = own.Analyze(options);
            EXPECT_EQ(result.exitCode, 0) << result;
            const std::string found = own.CoreCalls().at(0).Setting(row.key);
            own.ForgetCoreCalls();
            return found;
        };
        EXPECT_EQ(value({}), row.byDefault);
        EXPECT_EQ(value({"-c", "my.cfg"}), row.fromFile);
        Arguments both = row.option;
        both.insert(both.end(), {"--cfg", "my.cfg"});
        EXPECT_EQ(value(both), row.fromOption);
    }
}

TEST_F(OptionsTest, RelativePathsBelongToWhereTheyWereWritten) {
    sandbox.AddUnit("a.c");
    sandbox.Write("conf/my.cfg", "rules-config=my.orvconfig\nexclude-path=generated\n");
    sandbox.Analyze({"-c", "conf/my.cfg"});
    const CoreCall fromFile = OnlyCall();
    EXPECT_EQ(fromFile.Setting("rules-config"), sandbox.Path("conf/my.orvconfig"));
    EXPECT_EQ(fromFile.Setting("exclude-path"), sandbox.Path("conf/generated"));

    sandbox.ForgetCoreCalls();
    sandbox.Analyze({"-c", "conf/my.cfg", "-R", "my.orvconfig"});
    EXPECT_EQ(OnlyCall().Setting("rules-config"), sandbox.Path("my.orvconfig"));
}

TEST_F(OptionsTest, ExcludedPathsAreLeftOutAndToldToTheCore) {
    sandbox.AddUnit("src/a.c");
    sandbox.AddUnit("src/generated/b.c");
    sandbox.AddUnit("src/generated-not/c.c");
    sandbox.AddUnit("src/d_Test.c");
    sandbox.Write("my.cfg", "exclude-path=*_test.c\n");
    const RunResult result =
        sandbox.Analyze({"-e", "src/none", "-e", "src/../src/generated/", "-c", "my.cfg", "--verbose"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("  Exclusion by setting: '" + sandbox.Path("src/generated/b.c") + "'")) << result;
    EXPECT_TRUE(result.Says("  Exclusion by setting: '" + sandbox.Path("src/d_Test.c") + "'")) << result;

    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("src/a.c"), sandbox.Path("src/generated-not/c.c")}))
        << result;
    ASSERT_FALSE(sandbox.CoreCalls().empty());
    const std::vector<std::string> keys = sandbox.CoreCalls().front().Keys();
    EXPECT_GE(std::count(keys.begin(), keys.end(), "exclude-path"), 2) << result;
}

TEST_F(OptionsTest, RunThatExcludesEverythingIsNoSuccess) {
    sandbox.AddUnit("a.c");
    const RunResult result = sandbox.Analyze({"-e", sandbox.Path()});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

TEST_F(OptionsTest, EmptyValuesAreRefusedAndUnknownOnesToldByName) {
    sandbox.AddUnit("a.c");
    for (const char* const option :
         {"--exclude-path", "--analyze-only", "--sourcetree-root", "--rules-config", "--platform", "--preprocessor"}) {
        const RunResult result = sandbox.Analyze({option, ""});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(std::string("Error: Wrong value of ") + option + ": it is empty\n")) << result;
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
    const RunResult result = sandbox.Analyze({"-p", "other", "--platform", "vax", "-R", "none.orvconfig"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("Warning: unknown value of --preprocessor: \"other\", expected gcc or clang\n")) << result;
    EXPECT_TRUE(result.Says("Warning: unknown value of --platform: \"vax\", expected linux64, ")) << result;
    EXPECT_TRUE(result.Says("Warning: the file of --rules-config doesn't exist: none.orvconfig\n")) << result;
}

TEST_F(OptionsTest, WhatLooksLikeASlipIsToldByName) {
    sandbox.AddUnit("lib/a.c");
    sandbox.AddUnit("b.c");
    sandbox.Write("my.cfg", "exclude_paths=other\nown-key=1\nown-key=2\n");
    const RunResult result = sandbox.Analyze({"-e", "lib", "-e", "lbi", "-e", "*/generated/*", "-c", "my.cfg"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("Warning: no source file of the build is left out by --exclude-path lbi\n")) << result;
    EXPECT_TRUE(result.Says("is left out by --exclude-path */generated/*\n")) << result;
    EXPECT_TRUE(result.Says("unknown key \"exclude_paths\", did you mean \"exclude-path\"?\n")) << result;
    EXPECT_EQ(result.Count("Warning: "), 3U) << result;

    const RunResult open = sandbox.Analyze({"--source-file", "b.c", "--cl-params", "-DA=\"x y"});
    EXPECT_EQ(open.exitCode, 1) << open;
    EXPECT_TRUE(open.Says("Error: Wrong value of --cl-params: \"-DA=\"x y\", a quote is not closed\n")) << open;
}

TEST_F(OptionsTest, AnalyzeOnlyLeavesTheOthersOut) {
    sandbox.AddUnit("src/a.c");
    sandbox.AddUnit("lib/b.c");
    const RunResult result = sandbox.Analyze({"--analyze-only", "*/lib/*"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(OnlyCall().Setting("source-file"), sandbox.Path("lib/b.c")) << result;
}

TEST_F(OptionsTest, CompilerFilterTakesNamesAndPathsAndTellsWhatMatchesNothing) {
    const std::string other = sandbox.AddCompiler("other-gcc", "gcc 12\n");
    const std::string elsewhere = sandbox.Path("elsewhere/fake-gcc");
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    sandbox.Write("c.c", "int c;\n");
    sandbox.AddEntry({{other, "-c", sandbox.Path("c.c")}});
    const std::string compiler = sandbox.Path("tools/fake-gcc");
    for (const std::string& name : {std::string("FAKE-gcc"), std::string("fake-gcc.exe"), compiler}) {
        sandbox.ForgetCoreCalls();
        const RunResult result = sandbox.Analyze({"-C", name, "-C", elsewhere});
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("a.c"), sandbox.Path("b.c")})) << result;
        EXPECT_TRUE(result.Says("Skipped: 1 the compiler \"" + other + "\" is not one of those asked for")) << result;
        EXPECT_TRUE(result.Says("-C " + elsewhere + ": this compiler compiles no source file of the input")) << result;
        EXPECT_FALSE(result.Says("-C " + name + ":")) << result;
    }
    EXPECT_EQ(sandbox.Analyze({"-C", "fake-gcc", "-C", other}).exitCode, 0);
    EXPECT_EQ(sandbox.CoreCalls().size(), 5U);
}

TEST_F(OptionsTest, NoCompilerIsStartedFromOutsideTheFoldersThatAreNamed) {
    const std::string good = sandbox.AddCompiler("plain", "fake (GCC) 12\n");
    for (const char* const folder : {"else", "tools-not"}) { // the second begins like the one that is named
        sandbox.Write(std::string(folder) + "/a.c", "int a;\n");
        std::filesystem::copy_file(good, sandbox.Path(std::string(folder) + "/plain"));
    }
    sandbox.AddEntry({{good, "-c", "else/a.c"}});
    sandbox.AddEntry({{sandbox.Path("else/plain"), "-c", "else/a.c"}});
    sandbox.AddEntry({{sandbox.Path("tools-not/plain"), "-c", "else/a.c"}});
    const RunResult result = sandbox.Analyze({"--compiler-path", "tools", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("(1 analyzed, 2 failed")) << result;
    EXPECT_EQ(result.Count("\" lies in none of the folders of --compiler-path"), 2U) << result;
    EXPECT_FALSE(sandbox.Exists("else/plain.calls"));
    for (const char* const folder : {"none", "to*ls", "else/a.c", ""}) {
        EXPECT_EQ(sandbox.Analyze({"--compiler-path", folder}).exitCode, 1) << folder;
    }
}

TEST_F(OptionsTest, GivenVariablesGoOverTheEntrysGoOverTheDriversOwn) {
    sandbox.AddCompiler("fake-gcc", "gcc 12\n",
                        "show-variable FROM_DRIVER\nshow-variable FROM_ENTRY\nshow-variable FROM_OPTION\n");
    sandbox.Write("a.c", "int a;\n");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-std=c17", "-c", "a.c"},
                      "",
                      {{"FROM_ENTRY", "entry"}, {"FROM_OPTION", "entry"}}});
    for (const char* const name : {"FROM_DRIVER", "FROM_ENTRY", "FROM_OPTION"}) {
        sandbox.SetVariable(name, "driver");
    }
    const RunResult result = sandbox.Analyze({"--env", "FROM_OPTION=a=b c", "-E", "FURTHER=1"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::string text = OnlyCall().preprocessed;
    for (const char* const line : {"// FROM_DRIVER=driver\n", "// FROM_ENTRY=entry\n", "// FROM_OPTION=a=b c\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
    EXPECT_EQ(sandbox.Analyze({"--env", "no-equals-sign"}).exitCode, 1);
}

TEST_F(OptionsTest, DumpedDatabaseGivesTheSameReport) {
    sandbox.Write("args.rsp", "-DX=\"1\" -c b.c");
    sandbox.AddUnit("a.c", {}, {"-DQUOTED=\"a b\""});
    sandbox.Write("b.c", "int b;\n");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "@args.rsp"}, "", {{"NAME", "value"}}});
    EXPECT_EQ(sandbox.Analyze({"-o", "first.json", "--dump-json", "dumped.json"}).exitCode, 0);
    EXPECT_EQ(sandbox.Analyze({"-o", "second.json", "-f", "dumped.json"}).exitCode, 0);
    EXPECT_EQ(Report("first.json").size(), 2U);
    EXPECT_EQ(sandbox.Read("first.json"), sandbox.Read("second.json"));
}

TEST_F(OptionsTest, LogFileHoldsTheVerboseLinesOfAQuietRun) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    const RunResult result = sandbox.Analyze({"-q", "-e", sandbox.Path("b.c"), "--dump-log", "run.log"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_FALSE(result.Says("Exclusion by setting")) << result;
    EXPECT_NE(sandbox.Read("run.log").find("Exclusion by setting: '" + sandbox.Path("b.c")), std::string::npos);
}

TEST_F(OptionsTest, DumpedFilesStayAndAreTheUnits) {
    sandbox.AddUnit("a.c");
    sandbox.Write(".Orvanta/1_a.c.Orvanta.findings", "of a killed run");
    sandbox.Write(".Orvanta/1_a.c.Orvanta.i", "of a killed run");
    const RunResult result = sandbox.Analyze({"--dump-files", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const CoreCall call = OnlyCall();
    EXPECT_EQ(call.preprocessed.find("of a killed run"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(call.arguments.at(2))) << call.arguments.at(2);
    EXPECT_TRUE(std::filesystem::exists(call.Setting("i-file"))) << call.Setting("i-file");
}

TEST_F(OptionsTest, ExtraIncludeFolderReachesTheCompiler) {
    sandbox.AddUnit("a.c");
    EXPECT_EQ(sandbox.Analyze({"-I", "extra"}).exitCode, 0);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", sandbox.Path("extra")), 1U);
}

TEST_F(OptionsTest, OneFileIsAnalyzedWithoutABuildInput) {
    sandbox.AddCompiler("cc", "gcc 12\n");
    sandbox.Write("a b.c", "int a;\n");
    sandbox.SetVariable("PATH", sandbox.Path("tools"));
    const RunResult result = sandbox.Analyze({"--source-file", "a b.c", "--cl-params", "-std=c11 \"-DX=1 2\""});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(OnlyCall().Setting("source-file"), "a b.c");
    EXPECT_EQ(OnlyCall().Setting("std"), "c11");
    EXPECT_EQ(sandbox.CompilerCalls("cc", "-DX=1 2"), 1U);
}

TEST_F(OptionsTest, TheSettingsFileOfAProjectIsFoundAndNotTrusted) {
    sandbox.AddUnit("a.c");
    sandbox.Write(".git/HEAD", "");
    const RunResult without = sandbox.Analyze({"--cfg", "auto"});
    EXPECT_EQ(without.exitCode, 0) << without;
    EXPECT_TRUE(without.Says("No settings file: there is no .orvanta.cfg here or above")) << without;
    sandbox.Write(".orvanta.cfg", "analysis-mode=OP\nlauncher=evil\ncore-key=x\noutput-file=/evil\n");
    sandbox.ForgetCoreCalls();
    const RunResult result = sandbox.Analyze({"--cfg", "auto", "-i", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("Using settings file: " + sandbox.Path(".orvanta.cfg") + "\n")) << result;
    EXPECT_TRUE(result.Says("which came with the sources: core-key, launcher, output-file (")) << result;
    EXPECT_EQ(sandbox.CoreCalls().back().Setting("analysis-mode"), "8");
    EXPECT_EQ(sandbox.CoreCalls().back().Setting("core-key"), "(absent)");
    EXPECT_EQ(sandbox.Read(".Orvanta/.gitignore"), "*\n");
}

TEST_F(OptionsTest, ARunLeavesItsReportAndOneHiddenFolder) {
    sandbox.AddUnit("a.c");
    // While it runs, its lock lies where version control does not look.
    sandbox.WriteScript("a.c", {"touch " + sandbox.Path("started"), "wait-for " + sandbox.Path("go-on")});
    const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze({"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("started"); }));
    EXPECT_EQ(sandbox.Read(".Orvanta/.gitignore"), "*\n");
    sandbox.Write("go-on", "");
    EXPECT_EQ(run->Wait().exitCode, 0);
    EXPECT_TRUE(sandbox.Exists(".Orvanta/unit_costs.bin"));
    std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta")));
    EXPECT_EQ(sandbox.Analyze().exitCode, 0);
    EXPECT_FALSE(sandbox.Exists(".Orvanta")) << "findings on standard output have no folder";
    const RunResult missing = sandbox.Analyze({"-o", "none/report.json"});
    EXPECT_NE(missing.exitCode, 0) << missing;
    EXPECT_FALSE(sandbox.Exists("none")) << "a lock has made the folder of a report";
}

} // namespace

} // namespace Orvanta
