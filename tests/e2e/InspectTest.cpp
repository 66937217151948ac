// Guards against answers about a build that are not those of a run, and against faults of a build that nobody hears of
// before it is too late.

#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

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

} // namespace

} // namespace Orvanta
