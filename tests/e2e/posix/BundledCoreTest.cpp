// Guards against a first run, with real compilers and the bundled core, that finds nothing, finds it in the wrong
// place, or buries the user in findings of system headers.

#include "e2e/support/SandboxTest.h"
#include "platform/Environment.h"
#include "platform/Text.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace Orvanta {

namespace {

class BundledCoreTest : public SandboxTest {
protected:
    void WriteProject() {
        sandbox.Write("include/shared.h", "#pragma once\n"
                                          "inline int FromHeader() {\n"
                                          "    int values[2] = {0, 1};\n"
                                          "    return values[2];\n"
                                          "}\n");
        sandbox.Write("src/main.cpp", "#include \"shared.h\"\n"
                                      "#include <algorithm>\n"
                                      "#include <map>\n"
                                      "#include <string>\n"
                                      "#include <vector>\n"
                                      "int main() {\n"
                                      "    std::map<std::string, std::vector<int>> all;\n"
                                      "    int values[3] = {0, 1, 2};\n"
                                      "    return values[3] + FromHeader() + static_cast<int>(all.size());\n"
                                      "}\n");
        sandbox.Write("src/plain.c", "#include <stdio.h>\n"
                                     "#include <stdlib.h>\n"
                                     "int Plain(void);\n"
                                     "int Plain(void) {\n"
                                     "    char text[4];\n"
                                     "    text[4] = 'x';\n"
                                     "    printf(\"%s\", text);\n"
                                     "    return 0;\n"
                                     "}\n");
    }

    static std::multiset<std::string_view> SortedLines(std::string_view text) {
        std::multiset<std::string_view> lines;
        while (!text.empty()) {
            lines.insert(TakeLine(text));
        }
        return lines;
    }

    /// The error of the array index in a file: where it must be, and once.
    static void ExpectOneAt(const std::vector<Finding>& findings, const std::string& file, unsigned line) {
        EXPECT_EQ(std::count_if(findings.begin(), findings.end(),
                                [&](const Finding& finding) {
                                    return finding.file == file && finding.line == line && finding.level == 1 &&
                                           finding.code == "External" &&
                                           finding.message.find("[arrayIndexOutOfBounds") != std::string::npos;
                                }),
                  1)
            << file << ':' << line;
    }
};

TEST_F(BundledCoreTest, FindsTheUsersErrorsWhereTheyAre) {
    WriteProject();
    for (const auto& [c, cpp] : {std::pair{"gcc", "g++"}, std::pair{"clang", "clang++"}}) {
        sandbox.ForgetEntries();
        sandbox.AddEntry({{cpp, "-std=c++17", "-I../include", "-c", "main.cpp", "-o", "main.o"}, sandbox.Path("src")});
        sandbox.AddEntry({{c, "-O2", "-c", sandbox.Path("src/plain.c")}});
        sandbox.WriteDatabase();
        const RunResult result = sandbox.Run({"analyze", "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_TRUE(result.Says("Using the bundled core: ")) << result;
        const std::vector<Finding> findings = Report();
        ExpectOneAt(findings, sandbox.Path("include/shared.h"), 4);
        ExpectOneAt(findings, sandbox.Path("src/main.cpp"), 9);
        ExpectOneAt(findings, sandbox.Path("src/plain.c"), 6);
        for (const Finding& finding : findings) {
            EXPECT_TRUE(finding.file.starts_with(sandbox.Path())) << finding;
        }
        EXPECT_TRUE(sandbox.Leftovers().empty());
    }
}

// gcc breaks a line wherever text of a system macro begins or ends, also between the parentheses of what is a macro to
// Cppcheck.
TEST_F(BundledCoreTest, ReadsWhatSystemMacrosLeaveInTheUsersLines) {
    const std::string code = "#include <alloca.h>\n"
                             "#include <assert.h>\n"
                             "#include <stddef.h>\n"
                             "int Use(int *p, int *q, unsigned n) {\n"
                             "    int values[2] = {0, 1};\n"
                             "    assert(p != NULL &&\n"
                             "           q != NULL && *q > 3);\n"
                             "    if (__builtin_expect(p == NULL, 0)) { return values[2]; }\n"
                             "    char *room = (char *)alloca(q\n"
                             "        == NULL ? n : 2 * n);\n"
                             "    room[0] = 0;\n"
                             "    return values[3] + room[0];\n"
                             "}\n";
    sandbox.Write("use.c",
                  code + "#include <stdatomic.h>\n"
                         "int Load(_Atomic int *p) { int values[1] = {0}; return atomic_load(p) + values[4]; }\n");
    sandbox.Write("use.cpp", code);
    for (const char* const compiler : {"gcc", "clang"}) {
        sandbox.ForgetEntries();
        for (const char* const source : {"use.c", "use.cpp"}) {
            sandbox.AddEntry({{compiler, "-c", source}});
        }
        sandbox.WriteDatabase();
        const RunResult result = sandbox.Run({"analyze", "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 0) << result;
        const std::vector<Finding> findings = Report();
        for (const char* const source : {"use.c", "use.cpp"}) {
            ExpectOneAt(findings, sandbox.Path(source), 8);
            ExpectOneAt(findings, sandbox.Path(source), 12);
        }
        ExpectOneAt(findings, sandbox.Path("use.c"), 15);
    }
}

TEST_F(BundledCoreTest, FindsFaultsThatCrossFilesOnlyWithItsStages) {
    sandbox.Write("shared.h", "void Store(int *place);\nvoid Fill(int *buffer, int count);\n");
    sandbox.Write("callee.c", "#include \"shared.h\"\n"
                              "void Store(int *place) { *place = 3; }\n"
                              "void Fill(int *buffer, int count) { buffer[20] = count; }\n");
    sandbox.Write("caller.c", "#include <stdlib.h>\n"
                              "#include \"shared.h\"\n"
                              "int main(void) {\n"
                              "    int buffer[10];\n"
                              "    int *nowhere = NULL;\n"
                              "    Fill(buffer, 3);\n"
                              "    Store(nowhere);\n"
                              "    return buffer[0];\n"
                              "}\n");
    for (const char* const source : {"callee.c", "caller.c"}) {
        sandbox.AddEntry({{"gcc", "-c", source}});
    }
    sandbox.WriteDatabase();
    EXPECT_EQ(sandbox.Run({"analyze", "-o", "report.json"}).exitCode, 0);
    EXPECT_TRUE(Report().empty());
    const RunResult result = sandbox.Run({"analyze", "--intermodular", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<Finding> findings = Report();
    ASSERT_EQ(findings.size(), 2U) << result;
    const std::pair<unsigned, const char*> expected[] = {
        {2, "[ctunullpointer]"},
        {3, "[ctuArrayIndex]"},
    };
    for (std::size_t index = 0; index < findings.size(); ++index) {
        EXPECT_EQ(findings[index].file, sandbox.Path("callee.c"));
        EXPECT_EQ(findings[index].line, expected[index].first);
        EXPECT_TRUE(findings[index].message.starts_with(expected[index].second)) << findings[index];
    }
    for (const char* const stage : {"collect", "link", "perform"}) {
        const RunResult one =
            sandbox.Run({"analyze", "--intermodular-stage", stage, "--shared", "shared", "-o", "staged.json"});
        EXPECT_EQ(one.exitCode, 0) << one;
    }
    EXPECT_EQ(sandbox.Read("staged.json"), sandbox.Read("report.json"));
}

TEST_F(BundledCoreTest, ListsTheDependenciesOfAnIncrementalRun) {
    WriteProject();
    sandbox.AddEntry({{"g++", "-std=c++17", "-I../include", "-c", "main.cpp", "-o", "main.o"}, sandbox.Path("src")});
    sandbox.AddEntry({{"gcc", "-c", sandbox.Path("src/plain.c")}});
    sandbox.WriteDatabase();
    EXPECT_EQ(sandbox.Run({"analyze", "-i", "-o", "report.json"}).exitCode, 0);
    const std::vector<Finding> whole = Report();
    sandbox.Write("include/shared.h", "#pragma once\ninline int FromHeader() { return 1; }\n");
    const RunResult result = sandbox.Run({"analyze", "-i", "-o", "report.json"});
    EXPECT_TRUE(result.Says("2 (1 analyzed, 1 carried over, 0 failed")) << result;
    ExpectOneAt(Report(), sandbox.Path("src/plain.c"), 6);
    EXPECT_LT(Report().size(), whole.size());
}

TEST_F(BundledCoreTest, WithoutItsEngineEndsTheRunBeforeTheFirstFile) {
    for (const char* const source : {"a.c", "b.c"}) {
        sandbox.Write(source, "int x;\n");
        sandbox.AddEntry({{"/usr/bin/gcc", "-c", source}});
    }
    sandbox.WriteDatabase();
    sandbox.Write("report.json", "of an earlier run");
    sandbox.SetVariable("PATH", sandbox.Path("none"));
    const RunResult result = sandbox.Run({"analyze", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: Neither Cppcheck nor clang-tidy was found along PATH: install the package"))
        << result;
    EXPECT_EQ(result.Count("Cppcheck"), 1U) << result;
    EXPECT_EQ(sandbox.Read("report.json"), "of an earlier run");
}

// Runs in a folder where neither the project nor a compiler is, as far as the scripts can tell.
TEST_F(BundledCoreTest, FindsTheSameInAReplayWithoutTheProject) {
    for (const bool isScrubbed : {false, true}) {
        WriteProject();
        // What each of the engines can't read.
        sandbox.Write("src/label.c", "/* secret */\nint Label(void) { int inner(void) { return 0; } void *p = &&end;\n"
                                     "goto *p; end: return inner(); }\n");
        sandbox.ForgetEntries();
        sandbox.AddEntry({{"g++", "-CC", "-I../include", "-c", "main.cpp", "-o", "main.o"}, sandbox.Path("src")});
        sandbox.AddEntry({{"gcc", "-c", "label.c"}, sandbox.Path("src")});
        sandbox.WriteDatabase();
        Arguments options = {"analyze", "-o", "report.json", "--bundle", "b", "--bundle-unit", "src/main.cpp"};
        if (isScrubbed) {
            options.emplace_back("--scrub");
        }
        const RunResult result = sandbox.Run(options);
        EXPECT_TRUE(result.Says("Replay bundles: 2 in ")) << result;
        const std::string line = result.Lines().at(1);
        const std::string core = line.substr(line.rfind(' ') + 1);
        for (const char* const folder : {"src", "include"}) {
            std::filesystem::remove_all(sandbox.Path(folder));
        }
        std::size_t failed = 0;
        for (const auto& bundle : std::filesystem::directory_iterator(sandbox.Path("b"))) {
            const std::string name = "b/" + bundle.path().filename().string();
            const std::string path = EnvironmentVariable("PATH").value_or("");
            Process replay(
                {bundle.path().string() + "/replay.sh", core}, sandbox.Path("b"), EnvironmentBlock({{"PATH", path}}),
                [](std::string_view) {}, [](std::string_view) {});
            const bool hasFailed = replay.get_exit_status() != 0;
            const std::string expected =
                sandbox.Exists(name + "/expected.findings") ? sandbox.Read(name + "/expected.findings") : std::string();
            // The core sorts by names, which scrubbing has changed.
            const std::string replayed = sandbox.Read(name + "/replayed.findings");
            EXPECT_EQ(SortedLines(replayed), SortedLines(expected)) << name;
            EXPECT_NE(hasFailed, expected.find("arrayIndexOutOfBounds") != std::string::npos) << name;
            failed += hasFailed ? 1 : 0;
            for (const auto& file : std::filesystem::directory_iterator(bundle)) {
                const std::string text = sandbox.Read(name + "/" + file.path().filename().string());
                for (const char* const word : {"secret", "main.cpp", "shared.h", "label.c", "BundledCoreTest"}) {
                    EXPECT_TRUE(!isScrubbed || text.find(word) == std::string::npos) << word << " in " << file.path();
                }
            }
        }
        EXPECT_EQ(failed, 1U);
        std::filesystem::remove_all(sandbox.Path("b"));
    }
}

} // namespace

} // namespace Orvanta
