// Guards against answers about a build that are not those of a run, and against faults of a build that nobody hears of
// before it is too late.

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvanta {

namespace {

using nlohmann::json;

class InspectTest : public SandboxTest {
protected:
    RunResult Inspect(const std::string& command, const Arguments& options = {}) {
        sandbox.WriteDatabase();
        Arguments words = {command, "--orvanta-path", FakeCoreProgram()};
        words.insert(words.end(), options.begin(), options.end());
        return sandbox.Run(words);
    }

    json Explain(const Arguments& options) {
        Arguments all = {"--json"};
        all.insert(all.end(), options.begin(), options.end());
        const RunResult result = Inspect("explain", all);
        EXPECT_EQ(result.exitCode, 0) << result;
        return json::parse(result.output);
    }
};

TEST_F(InspectTest, ExplanationIsWhatARunDoes) {
    sandbox.AddUnit("other.c");
    sandbox.AddUnit("a.c", {}, {"-DONE", "-O2", "-MD"});
    ASSERT_EQ(sandbox.Analyze({"-i", "-q", "-o", "report.json", "-E", "CHANGED=1", "-I", "added"}).exitCode, 0);
    const json unit = Explain({"-o", "report.json", "-E", "CHANGED=1", "-I", "added", "a.c"})["units"].at(0);
    EXPECT_EQ(unit["entry"], 2);
    EXPECT_EQ(unit["source"], sandbox.Path("a.c"));
    EXPECT_EQ(unit["standard"], json({{"word", "c17"}, {"from", "flag"}}));
    EXPECT_EQ(unit["environment"]["variables"], json({{"CHANGED", "1"}}));
    EXPECT_EQ(unit["history"]["standing"], "unchanged: its findings are carried over");
    // The core was told the same, but for the folder that goes with each run.
    for (const CoreCall& call : sandbox.CoreCalls()) {
        for (const auto& [key, value] : call.settings) {
            if (call.Setting("source-file") == sandbox.Path("a.c") && key != "i-file" && key != "output-file") {
                EXPECT_EQ(unit["settings"].value(key, ""), value) << key;
            }
        }
    }
    std::string words;
    for (const auto& word : unit["preprocessing"]["arguments"]) {
        words += (words.empty() ? "" : "|") + word.get<std::string>();
    }
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-DONE"), 1U) << "explain has preprocessed";
    EXPECT_NE(words.find("|-std=c17|-DONE|-c|-I" + sandbox.Path("added") + "|-DORVANTA|"), std::string::npos) << words;
    EXPECT_TRUE(sandbox.Leftovers().empty());

    sandbox.Write("a.c", "int changed;\n");
    const json changed = Explain({"-o", "report.json", "-E", "CHANGED=1", "-I", "added", "a.c"})["units"].at(0);
    EXPECT_EQ(changed["history"]["standing"], "a file has changed: it runs");
    EXPECT_EQ(changed["history"]["file"], sandbox.Path("a.c"));
}

TEST_F(InspectTest, HeaderIsToldWithItsUnits) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    sandbox.Write("common.h", "int common;\n");
    sandbox.Write("a.c", "#include \"common.h\"\n");
    ASSERT_EQ(sandbox.Analyze({"-i", "-q", "-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(Explain({"-o", "report.json", "common.h"})["includedBy"], json({sandbox.Path("a.c")}));
    const RunResult unknown = Inspect("explain", {"-o", "report.json", "no.h"});
    EXPECT_EQ(unknown.exitCode, 1) << unknown;
    EXPECT_TRUE(unknown.Says("Error: Nothing in compile_commands.json compiles " + sandbox.Path("no.h"))) << unknown;
}

TEST_F(InspectTest, EachStepOfTheReadingIsShown) {
    const std::string compiler = sandbox.AddCompiler("fake-gcc", "fake-gcc (Fake) 12.2.0\n");
    sandbox.Write("lib/a.c", "int a;\n");
    sandbox.Write("a.rsp", "-DFROM_FILE\n");
    sandbox.AddEntry({{"nice", "-n", "5", compiler, "-std=c11", "@a.rsp", "-c", "lib/a.c"}});
    sandbox.AddEntry({{"ccache", compiler, "-c", "lib/a.c"}});
    const RunResult result = Inspect("explain", {"-e", "lib", "a.c"}); // in whatever folder it is
    for (const std::string& line : {
             sandbox.Path("lib/a.c") + ": entry 1 of compile_commands.json, line 2",
             std::string("launcher      nice -n 5  (taken off)"),
             "response file " + sandbox.Path("a.rsp") + ": -DFROM_FILE",
             std::string("family        GCC: it answers --version, and nothing names another family"),
             std::string("-DFROM_FILE  kept (macro)"),
             "verdict       left out by exclude-path " + sandbox.Path("lib"),
             std::string("entry 2 of compile_commands.json, line 15, gives no unit"),
             std::string("ccache command"),
         }) {
        EXPECT_TRUE(result.Says(line)) << line << result;
    }
    EXPECT_EQ(result.exitCode, 0);
}

/// A fault that costs a user an afternoon, and the words that name it.
struct PlantedFault {
    const char* name;
    void (*plant)(Sandbox& sandbox, const std::string& compiler);
    Arguments command; // behind the name of the fake core
    const char* check; // of doctor's document; null: explain is asked
    std::string said;
};

Arguments Compiling(const std::string& compiler, const Arguments& flags, const std::string& source = "a.c") {
    Arguments words = {compiler, "-std=c17"};
    words.insert(words.end(), flags.begin(), flags.end());
    words.insert(words.end(), {"-c", source});
    return words;
}

const PlantedFault PlantedFaults[] = {
    {"wrong flag order",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({{compiler, "-c", "a.c", "-x", "c++"}});
     },
     {"doctor"},
     "language-behind-source",
     "-x c++ behind a.c"},
    {"missing generated header",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({Compiling(compiler, {"-I", "generated", "-include", "config.h"})});
     },
     {"doctor"},
     "missing-forced-include",
     "config.h"},
    {"wrong compiler on PATH",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({Compiling("fake-gcc.exe", {}), {}, {{"PATH", std::string(DirectoryOf(compiler))}}});
         sandbox.Write("CMakeFiles/3.25.1/CMakeCCompiler.cmake",
                       "set(CMAKE_C_COMPILER \"/opt/right/fake-gcc.exe\")\nset(CMAKE_C_COMPILER_VERSION \"13.1.0\")\n");
     },
     {"doctor"},
     "wrong-compiler",
     "but the build was configured with /opt/right/fake-gcc.exe"},
    {"launcher",
     [](Sandbox& sandbox, const std::string& compiler) {
         Arguments words = Compiling(compiler, {});
         words.insert(words.begin(), "my-wrapper");
         sandbox.AddEntry({words});
     },
     {"doctor"},
     "unknown-compiler",
     "the program \"my-wrapper\" looks like a launcher"},
    {"response file gone",
     [](Sandbox& sandbox, const std::string& compiler) { sandbox.AddEntry({Compiling(compiler, {"@flags.rsp"})}); },
     {"doctor"},
     "unreadable",
     "the response file \"flags.rsp\" doesn't exist"},
    {"stale PCH",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.Write("pch.h.gch", "");
         sandbox.Write("pch.h", "");
         const std::filesystem::path header = NativePath(sandbox.Path("pch.h"));
         std::filesystem::last_write_time(header, std::filesystem::last_write_time(header) + std::chrono::hours(1));
         sandbox.AddEntry({Compiling(compiler, {"-include", "pch.h"})});
     },
     {"doctor"},
     "stale-precompiled",
     "pch.h.gch"},
    {"excluded by a folder rule",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.Write("lib/a.c", "");
         sandbox.AddEntry({Compiling(compiler, {}, "lib/a.c")});
     },
     {"explain", "lib/a.c", "-e", "lib"},
     nullptr,
     "verdict       left out by exclude-path "},
    {"-isystem over the project",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({Compiling(compiler, {"-isystem", "."})});
     },
     {"doctor"},
     "in-system-folder",
     "a.c: system folder ."},
    {"two entries for one file",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({Compiling(compiler, {"-DDEBUG"})});
         sandbox.AddEntry({Compiling(compiler, {"-DNDEBUG", "-O2"}, "./a.c")});
     },
     {"doctor"},
     "conflicting-entries",
     "and entry 1: -DDEBUG -DNDEBUG"},
    {"wrong database",
     [](Sandbox& sandbox, const std::string& compiler) {
         sandbox.AddEntry({Compiling(compiler, {}, "/elsewhere/a.c")});
         sandbox.AddEntry({Compiling(compiler, {}, "/elsewhere/b.c")});
     },
     {"doctor"},
     "wrong-database",
     "a.c"},
};

TEST_F(InspectTest, PlantedFaultsAreNamed) {
    const std::string compiler = sandbox.AddCompiler("fake-gcc.exe", "fake-gcc (Fake) 12.2.0\n");
    sandbox.Write("a.c", "int a;\n");
    for (const PlantedFault& fault : PlantedFaults) {
        SCOPED_TRACE(fault.name);
        sandbox.ForgetEntries();
        fault.plant(sandbox, compiler);
        const Arguments options(fault.command.begin() + 1, fault.command.end());
        if (fault.check == nullptr) {
            const RunResult result = Inspect(fault.command.front(), options);
            EXPECT_TRUE(result.Says(fault.said)) << result;
            continue;
        }
        const RunResult result = Inspect("doctor", {"--json"});
        EXPECT_NE(result.exitCode, 0) << result;
        bool isNamed = false;
        const json document = json::parse(result.output);
        for (const json& finding : document["findings"]) {
            for (const json& place : finding["places"]) {
                isNamed = isNamed || (finding["check"] == fault.check &&
                                      place.get<std::string>().find(fault.said) != std::string::npos);
            }
        }
        EXPECT_TRUE(isNamed) << result;
        std::filesystem::remove_all(NativePath(sandbox.Path("CMakeFiles")));
    }
}

TEST_F(InspectTest, AHealthyBuildGetsACleanBill) {
    sandbox.AddUnit("a.c", {}, {"-include", "stdio.h", "-I", "."});
    sandbox.Write("inc/.keep", "");
    const RunResult healthy = Inspect("doctor");
    EXPECT_EQ(healthy.exitCode, 0) << healthy;
    EXPECT_TRUE(healthy.Says("Nothing was found that would go wrong.\n")) << healthy;
    EXPECT_TRUE(sandbox.Leftovers().empty());
    // What a person writes for the build tool, made after the database; a rule that is misspelt; a key that is.
    sandbox.Write("CMakeLists.txt", "");
    const std::filesystem::path file = NativePath(sandbox.Path("CMakeLists.txt"));
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::hours(1));
    sandbox.Write("settings.cfg", "exclude-path=no-such-folder\nexclude_path=x\n");
    const RunResult warned = Inspect("doctor", {"-c", "settings.cfg", "-C", "fake-gcc", "-C", "no-compiler"});
    EXPECT_EQ(warned.exitCode, 2) << warned;
    for (const std::string& line : {sandbox.Path("CMakeLists.txt"), sandbox.Path("no-such-folder"),
                                    std::string("did you mean \"exclude-path\""), std::string("  no-compiler\n")}) {
        EXPECT_TRUE(warned.Says(line)) << line << warned;
    }
    // One that would fail wins over what only warns.
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-c", "missing.c"}});
    const RunResult ill = Inspect("doctor");
    EXPECT_EQ(ill.exitCode, 1) << ill;
    EXPECT_TRUE(ill.Says("error: source files are missing\n  entry 2: " + sandbox.Path("missing.c"))) << ill;
}

} // namespace

} // namespace Orvanta
