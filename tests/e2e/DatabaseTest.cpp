// Guards against a build input whose mistakes are swallowed, and against invocations that vanish without a word.

#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <numeric>
#include <regex>
#include <sstream>

namespace Orvanta {

namespace {

class DatabaseTest : public SandboxTest {
protected:
    /// Adds an entry whose words, blanks between them, follow the fake compiler.
    void AddCommand(const std::string& words, const Arguments& launcher = {}) {
        Entry entry{launcher};
        entry.arguments.push_back(sandbox.Path("tools/fake-gcc"));
        std::istringstream stream(words);
        entry.arguments.insert(entry.arguments.end(), std::istream_iterator<std::string>(stream), {});
        sandbox.AddEntry(std::move(entry));
    }
};

constexpr const char* NoInvocations = "No compiler invocations were detected.\n";
constexpr const char* NoMember =
    "Unexpected exception was thrown: [json.exception.invalid_iterator.214] cannot get value";
constexpr const char* NoJson = "Unexpected exception was thrown: [json.exception.parse_error";

struct BadDatabase {
    const char* text;
    const char* said;
    const char* told = ""; // in the first line, behind the file; empty: nothing
};

const BadDatabase BadDatabases[] = {
    {R"([])", NoInvocations},
    {R"({})", NoInvocations},
    {R"(null)", NoInvocations},
    {R"({"directory": "/"})", "type must be array", ": the database is an object, expected an array"},
    {R"([{"arguments": ["gcc", "-c", "a.c"]}])", NoMember, ", entry 1: \"directory\" is missing"},
    {R"([{"directory": "/"}])", NoMember, ", entry 1: \"command\" is missing"},
    {R"([{"directory": "/", "command": ":"}, 7])", "type must be object",
     ", entry 2: it is a number, expected an object"},
    {R"([{"directory": 1, "command": "gcc -c a.c"}])", "type must be string, but is number",
     ", entry 1: \"directory\" is a number, expected a string"},
    {R"([{"directory": "/", "command": null}])", "type must be string, but is null",
     ", entry 1: \"command\" is null, expected a string"},
    {R"([{"directory": "/", "arguments": ["gcc", false]}])", "type must be string, but is boolean",
     ", entry 1: a value in \"arguments\" is a boolean, expected a string"},
    {R"([{"directory": "/", "command": "gcc", "environment": {"A": 1}}])", "type must be string, but is number",
     ", entry 1: a value in \"environment\" is a number, expected a string"},
    {R"([{"directory": "/", "command": "gcc -c a.c"},])", NoJson, ", behind entry 1: it is no valid JSON"},
    {R"([{"directory": 1}, {"directory" "/"}])", NoJson, ", entry 2: it is no valid JSON"},
    {R"()", NoJson, ": it is no valid JSON"},
};

TEST_F(DatabaseTest, FaultyDatabaseEndsTheRunWithItsReason) {
    for (const BadDatabase& bad : BadDatabases) {
        sandbox.Write("compile_commands.json", bad.text);
        const RunResult result = sandbox.Analyze();
        EXPECT_EQ(result.exitCode, 1) << bad.text << result;
        EXPECT_TRUE(result.Says(bad.said)) << bad.text << result;
        EXPECT_FALSE(result.Says("'-C'")) << result;
        if (*bad.told != '\0') {
            EXPECT_TRUE(result.output.starts_with("compile_commands.json" + std::string(bad.told) + "\n")) << result;
        }
    }
}

TEST_F(DatabaseTest, MissingDatabaseIsNamed) {
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: Couldn't open file compile_commands.json\n")) << result;
}

TEST_F(DatabaseTest, FaultInALaterEntryAnalyzesNothing) {
    sandbox.AddUnit("a.c");
    sandbox.WriteDatabase();
    std::string text = sandbox.Read("compile_commands.json");
    text.replace(text.rfind(']'), 1, R"(, {"directory": "/"}])");
    sandbox.Write("broken.json", text);
    const RunResult result = sandbox.Analyze({"-f", "broken.json", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(sandbox.CoreCalls().empty()) << result;
}

/// A text as a string of JSON.
std::string Quoted(const std::string& text) {
    return nlohmann::json(text).dump();
}

TEST_F(DatabaseTest, BothFormsOfAnEntryMeanTheSame) {
    const std::string compiler = sandbox.AddCompiler("fake-gcc", "gcc 12\n");
    sandbox.Write("sub/a b.c", "int a;\n");
    const std::string entryStart = R"({"directory": )" + Quoted(sandbox.Path("sub"));
    sandbox.Write("compile_commands.json", "[" + entryStart + R"(, "file": "ignored.c", "command": )" +
                                               Quoted(compiler + R"( -std=c11 -DNAME="x y" -c "a b.c")") + "}, " +
                                               entryStart + R"(, "command": "never read", "arguments": [)" +
                                               Quoted(compiler) + R"(, "-std=c11", "-DNAME=x y", "-c", "a b.c"]}])");
    const RunResult result = sandbox.Analyze({"-j", "1"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 2U) << result;
    for (const char* const key : {"std", "source-file", "language", "platform"}) {
        EXPECT_EQ(calls[0].Setting(key), calls[1].Setting(key)) << key;
    }
    EXPECT_EQ(calls[0].Setting("std"), "c11");
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-DNAME=x y"), 2U);
}

TEST_F(DatabaseTest, RelativeFolderBelongsToTheDatabase) {
    sandbox.AddUnit("unused.c");
    sandbox.Write("out/sub/a.c", "int a;\n");
    sandbox.Write("out/compile_commands.json", R"([{"directory": "sub", "arguments": [)" +
                                                   Quoted(sandbox.Path("tools/fake-gcc")) +
                                                   R"(, "-std=c11", "-c", "a.c"]}])");
    const RunResult result = sandbox.Analyze({"-f", "out/compile_commands.json", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    ASSERT_EQ(sandbox.CoreCalls().size(), 1U) << result;
    EXPECT_EQ(sandbox.CoreCalls().front().directory, sandbox.Path("out/sub"));
}

TEST_F(DatabaseTest, VariablesOfAnEntryAreItsOwn) {
    const std::string compiler =
        sandbox.AddCompiler("fake-gcc", "gcc 12\n", "show-variable NAME_1\nshow-variable bad-name\n");
    sandbox.Write("a.c", "int a;\n");
    sandbox.Write("b.c", "int b;\n");
    sandbox.AddEntry({{compiler, "-std=c11", "-c", "a.c"}, "", {{"NAME_1", "first"}, {"bad-name", "set"}}});
    sandbox.AddEntry({{compiler, "-std=c11", "-c", "b.c"}});
    EXPECT_EQ(sandbox.Analyze().exitCode, 0);
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_NE(calls[0].preprocessed.find("// NAME_1=first\n// bad-name=(not set)\n"), std::string::npos)
        << calls[0].preprocessed;
    EXPECT_NE(calls[1].preprocessed.find("// NAME_1=(not set)\n"), std::string::npos) << calls[1].preprocessed;
}

/// The counts of the summary's line of invocations: all of them, then those of each fate.
std::vector<unsigned> CountsOf(const RunResult& result) {
    std::vector<unsigned> counts;
    for (const std::string& line : result.Lines()) {
        if (line.starts_with("Compiler invocations: ")) {
            const std::regex number("[0-9]+");
            for (std::sregex_iterator at(line.begin(), line.end(), number), end; at != end; ++at) {
                counts.push_back(static_cast<unsigned>(std::stoul(at->str())));
            }
        }
    }
    return counts;
}

TEST_F(DatabaseTest, EveryInvocationHasOneFateAndItIsTold) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("excluded.c");
    sandbox.AddUnit("failing.c", {"exit 3"});
    sandbox.Write("s.s", "nop\n");
    for (const char* const words : {"a.o -o program", "-c s.s -o assembled.o", "-x c -c - -o input.o", "-M a.c",
                                    "-MM a.c", "-E a.c -o only.i", "--version"}) {
        AddCommand(words);
    }
    AddCommand("-c a.c", {"ccache"});
    AddCommand("-c b.c", {"ccache"});
    sandbox.AddEntry({{sandbox.Path("tools/vanished"), "-c", "a.c"}});
    const RunResult result = sandbox.Analyze({"-e", sandbox.Path("excluded.c"), "--verbose", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_EQ(result.Count("use --ignore-ccache to analyze them"), 1U) << result;
    for (const char* const named : {"program", "assembled.o", "input.o", "only.i"}) {
        EXPECT_TRUE(result.Says(named)) << named << result;
    }
    const std::vector<unsigned> counts = CountsOf(result);
    ASSERT_GE(counts.size(), 5U) << result;
    EXPECT_EQ(counts[0], 13U) << result;
    EXPECT_EQ(std::accumulate(counts.begin() + 1, counts.end(), 0U), counts[0]) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("a.c"), sandbox.Path("failing.c")}));
}

TEST_F(DatabaseTest, RunThatSkippedEverythingIsNoSuccess) {
    sandbox.AddUnit("a.c");
    Sandbox own;
    own.AddEntry({{sandbox.Path("tools/fake-gcc"), "a.o", "-o", "program"}});
    const RunResult result = own.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: No source file to analyze\n")) << result;
    EXPECT_TRUE(result.Says("1 link only")) << result;
    EXPECT_FALSE(result.Says("The results are saved")) << result;
    EXPECT_FALSE(own.Exists("report.json"));
}

TEST_F(DatabaseTest, InvocationOfSeveralSourcesGivesAUnitForEach) {
    sandbox.AddUnit("a.c");
    sandbox.Write("b.c", "int b;\n");
    sandbox.Write("c.cpp", "int c;\n");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-c", "b.c", "-DX", "c.cpp"}});
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<std::string> sources{sandbox.Path("a.c"), "b.c", "c.cpp"};
    EXPECT_EQ(sandbox.AnalyzedSources(), sources);
    EXPECT_EQ(Report().size(), 3U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "b.c c.cpp"), 0U) << "a unit is preprocessed alone";
}

TEST_F(DatabaseTest, MissingSourceBecomesAFinding) {
    sandbox.AddUnit("a.c");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-std=c11", "-c", "gone.c"}});
    sandbox.AddUnit("b.c");
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Source file can't be preprocessed!")) << result;
    const std::vector<Finding> findings = Report();
    ASSERT_EQ(findings.size(), 3U) << result;
    EXPECT_EQ(findings[1],
              (Finding{"V008", 1, sandbox.Path("gone.c"), 1, "Unable to start the analysis on this file."}));
}

TEST_F(DatabaseTest, CcacheIsUnwrappedOnDemand) {
    sandbox.AddUnit("a.c");
    sandbox.Write("b.c", "int b;\n");
    sandbox.AddEntry({{"ccache", sandbox.Path("tools/fake-gcc"), "-std=c11", "-c", "b.c"}});
    const RunResult result = sandbox.Analyze({"--ignore-ccache"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CoreCalls().size(), 2U) << result;
    EXPECT_FALSE(result.Says("--ignore-ccache")) << result;
}

TEST_F(DatabaseTest, ResponseFilesAreReadAndTheirFaultsStayWithTheirUnit) {
    sandbox.AddCompiler("fake-gcc", "gcc 12\n");
    for (const char* const source : {"a.c", "b.c", "c.c", "d.c", "at@sign/e.c"}) {
        sandbox.Write(source, "int x;\n");
    }
    sandbox.Write("rsp/outer.rsp", "-std=c11 @rsp/inner.rsp");
    sandbox.Write("rsp/inner.rsp", "'-DTEXT=a \"b\"' -c a.c");
    sandbox.Write("rsp/quote.rsp", "-c \"b.c");
    sandbox.Write("rsp/self.rsp", "@rsp/self.rsp -c c.c");
    for (const char* const words : {"@rsp/outer.rsp", "@rsp/quote.rsp", "@rsp/self.rsp", "-c d.c @rsp/missing.rsp",
                                    "@rsp/gone.rsp", "-std=c11 -DX=a@b -Iat@sign -c at@sign/e.c"}) {
        AddCommand(words);
    }
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    const std::string depth = "Recursion depth of the response files expansion exceeds the limit: 2000.";
    EXPECT_TRUE(result.Says("Unmatched quote in response file \"rsp/quote.rsp\": \"b.c")) << result;
    EXPECT_TRUE(result.Says(depth)) << result;
    EXPECT_TRUE(result.Says("rsp/missing.rsp")) << result;
    EXPECT_TRUE(result.Says("rsp/gone.rsp")) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector<std::string>{"a.c", "at@sign/e.c"})) << result;
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-DTEXT=a \"b\""), 1U);
    EXPECT_EQ(Report().size(), 2U);
}

} // namespace

} // namespace Orvanta
