// What explain and verify say of real compilers, by other ways to the same answer.

#include "e2e/support/SandboxTest.h"
#include "platform/Paths.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace Orvanta {

namespace {

using InspectRealTest = SandboxTest;

TEST_F(InspectRealTest, LineOfExplainWorksWhenPasted) {
    sandbox.Write("a b's/it's.c", "NAME VALUE FROM_SHELL\n");
    sandbox.AddEntry(
        {{"gcc", "-DNAME=\"$HOME\"", "-DVALUE='`x`' \\", "-c", "it's.c"}, sandbox.Path("a b's"), {{"CPATH", "a $b"}}});
    sandbox.WriteDatabase();
    const RunResult explained = sandbox.Run({"explain", "--json", "it's.c"});
    ASSERT_EQ(explained.exitCode, 0) << explained;
    const nlohmann::json unit = nlohmann::json::parse(explained.output)["units"].at(0);
    const std::string line = unit["preprocessing"]["line"].get<std::string>();
    EXPECT_NE(line.find("CPATH='a $b'"), std::string::npos) << line;
    const RunResult pasted = RunningDriver({"/bin/sh", "-c", line}, "/", sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(pasted.exitCode, 0) << line << pasted;
    const std::string text = sandbox.Read("temporary/1_it's.c.Orvanta.i");
    EXPECT_NE(text.find("\"$HOME\" '`x`' \\ FROM_SHELL"), std::string::npos) << text;
}

struct VerifiedUnit {
    const char* source;
    Arguments words; // before "-c SOURCE"
    const char* text;
    std::vector<std::string> causes; // none: the texts are equal
    const char* place = "";
};

const char* const Optimized = "int first;\n\n#ifdef __OPTIMIZE__\nint optimized;\n#endif\nint last;\n";

const VerifiedUnit VerifiedUnits[] = {
    {"plain.c",
     {"gcc", "-MD", "-MF", "plain.d", "-o", "plain.o", "-save-temps=obj"},
     "/* c */ int a = __COUNTER__;\n",
     {}},
    {"macro.c", {"gcc", "-O2"}, "#ifdef ORVANTA\nint known;\n#endif\n", {}},
    {"time.cpp", {"g++"}, "const char* now = __DATE__ __TIME__;\n", {}},
    // With -g3 the text holds all macros, one of which -O2 makes.
    {"debug.c", {"gcc", "-O2", "-g3", "-P"}, "int a;\n", {"-O2", "-g3"}, "debug.c:1"},
    {"one.c", {"gcc", "-DA", "-Wp,-DB", "-O2", "-Wall"}, Optimized, {"-O2"}, "one.c:6"},
    {"two.c",
     {"clang", "-C", "-DA", "-O1"},
     "int a; // it\n#ifdef __OPTIMIZE__\nint o;\n#endif\n",
     {"-C", "-O1"},
     "two.c:1"},
    {"list.c", {"gcc", "-Wp,-DA,-C,-MD,list.d"}, "int a; /* kept */\n", {"-Wp -C"}, "list.c:1"},
    {"quoted.c", {"gcc", "@flags.rsp"}, "int value = sizeof VALUE;\n", {"@"}, "quoted.c:1"},
};

TEST_F(InspectRealTest, EachDifferenceHasItsFlag) {
    sandbox.Write("flags.rsp", "-DVALUE=\"x y\"\n");
    for (const VerifiedUnit& unit : VerifiedUnits) {
        sandbox.Write(unit.source, unit.text);
        Arguments words = unit.words;
        words.insert(words.end(), {"-c", unit.source});
        sandbox.AddEntry({words});
    }
    sandbox.AddEntry({{"gcc", "-c", "-include", "missing.h", "plain.c"}});
    sandbox.WriteDatabase();
    const RunResult result = sandbox.Run({"verify", "--json", "-j", "2"});
    EXPECT_EQ(result.exitCode, 1) << result;
    const nlohmann::json answer = nlohmann::json::parse(result.output);
    std::map<std::string, nlohmann::json> differences;
    for (const nlohmann::json& difference : answer["differences"]) {
        differences[std::string(FileNameOf(difference["source"].get<std::string>()))] = difference;
    }
    std::size_t equal = 0;
    for (const VerifiedUnit& unit : VerifiedUnits) {
        SCOPED_TRACE(unit.source);
        equal += unit.causes.empty() ? 1U : 0U;
        const auto difference = differences.find(unit.source);
        ASSERT_EQ(difference != differences.end(), !unit.causes.empty()) << result;
        if (unit.causes.empty()) {
            continue;
        }
        const auto causes = difference->second["causes"].get<std::vector<std::string>>();
        ASSERT_EQ(causes.size(), unit.causes.size()) << result;
        for (std::size_t place = 0; place < causes.size(); ++place) {
            EXPECT_TRUE(causes[place].starts_with(unit.causes[place])) << causes[place];
        }
        EXPECT_TRUE(difference->second["place"].get<std::string>().starts_with(unit.place)) << result;
    }
    EXPECT_EQ(answer["equal"], equal);
    ASSERT_EQ(answer["failures"].size(), 1U);
    EXPECT_NE(answer["failures"][0].dump().find("missing.h"), std::string::npos) << result;
    // What the commands of the build write is not written again, and nothing is left.
    for (const char* const name : {"plain.d", "plain.o", "list.d", "plain.i", "plain.s"}) {
        EXPECT_FALSE(sandbox.Exists(name)) << name;
    }
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(InspectRealTest, EqualTextsGiveACleanBill) {
    sandbox.Write("a.c", "#include <stdlib.h>\n");
    sandbox.Write("b.cpp", "#include <vector>\n");
    sandbox.AddEntry({{"gcc", "-std=c11", "-c", "a.c"}});
    sandbox.AddEntry({{"g++", "-std=c++17", "-O0", "-g", "-c", "b.cpp", "-o", "b.o"}});
    sandbox.WriteDatabase();
    const RunResult result = sandbox.Run({"verify"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.output.ends_with("2 of 2 texts are equal (100.0 %)\n")) << result;
    EXPECT_EQ(sandbox.Run({"verify", "-q", "-e", "*"}).exitCode, 1) << "nothing was compared";
}

TEST_F(InspectRealTest, AComparisonThatIsStoppedLeavesNothing) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c");
    sandbox.Write("a.c.compiler", "hang\n");
    sandbox.WriteDatabase();
    RunningDriver driver({DriverProgram(), "verify", "-j", "1"}, sandbox.Path(), sandbox.DriverEnvironment());
    ASSERT_TRUE(HoldsSoon([this] { return sandbox.CompilerCalls("fake-gcc", "a.c") > 0; }));
    driver.AskToEnd();
    const RunResult result = driver.Wait();
    EXPECT_EQ(result.exitCode, 130) << result;
    EXPECT_FALSE(result.Says("texts are equal")) << result;
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

} // namespace

} // namespace Orvanta
