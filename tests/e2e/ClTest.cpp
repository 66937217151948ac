// Guards against a core that is told the wrong thing about a unit of cl, and against words in the environment that
// count twice or not at all.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

constexpr const char* Banner86 = "Microsoft (R) C/C++ Optimizing Compiler Version 19.29.30133 for x86\n";

class ClTest : public SandboxTest {
protected:
    void AddUnit(const std::string& compiler, const Arguments& words, const Environment& environment = {}) {
        Entry entry{{compiler}, {}, environment};
        entry.arguments.insert(entry.arguments.end(), words.begin(), words.end());
        sandbox.Write(words.back(), "int x;\n");
        sandbox.AddEntry(std::move(entry));
    }
};

struct UnitCase {
    Arguments words;
    const char* source;
    std::vector<std::pair<const char*, const char*>> settings;
};

TEST_F(ClTest, CoreIsToldWhatTheCommandSays) {
    const std::string compiler =
        sandbox.AddCompiler("VC/Tools/MSVC/14.29/bin/Hostx64/x86/cl", "", "std-number 201703L\n");
    const UnitCase cases[] = {
        {{"/nologo", "/c"}, "a.cpp", {{"language", "C++"}, {"std", "c++17"}, {"msvc-await", "no"}}},
        {{"/std:c++latest", "/await", "/J"},
         "b.cpp",
         {{"std", "c++20"}, {"msvc-await", "yes"}, {"funsigned-char", "yes"}}},
        {{"/std:c11", "/Fo:", "a.obj"}, "c.c", {{"language", "C"}, {"std", "c11"}}},
        {{"/std:c++14", "/TP"}, "d.c", {{"language", "C++"}, {"std", "c++14"}}},
    };
    for (const UnitCase& unit : cases) {
        Arguments words = unit.words;
        words.emplace_back(unit.source);
        AddUnit(compiler, words);
    }
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), std::size(cases)) << result;
    for (std::size_t index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(calls[index].Setting("source-file"), cases[index].source);
        EXPECT_EQ(calls[index].Setting("preprocessor"), "visualcpp");
        EXPECT_EQ(calls[index].Setting("platform"), "Win32");
        for (const auto& [key, value] : cases[index].settings) {
            EXPECT_EQ(calls[index].Setting(key), value) << key << " of " << cases[index].source;
        }
    }
}

TEST_F(ClTest, CompilerIsAskedForItsTargetOnce) {
    const std::string compiler = sandbox.AddCompiler("cl", Banner86);
    for (const char* const source : {"a.c", "b.c", "c.c", "d.c"}) {
        AddUnit(compiler, {"/std:c17", "/c", source});
    }
    const RunResult result = sandbox.Analyze({"-j", "4"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CompilerCalls("cl", "--version"), 1U) << sandbox.Read("tools/cl.calls");
    for (const CoreCall& call : sandbox.CoreCalls()) {
        EXPECT_EQ(call.Setting("platform"), "Win32");
    }
    EXPECT_EQ(sandbox.CompilerCalls("cl", " -DORVANTA /P /Fi"), 4U) << sandbox.Read("tools/cl.calls");
}

TEST_F(ClTest, WordsInTheEnvironmentCountOnce) {
    const std::string compiler = sandbox.AddCompiler("cl", Banner86, "show-variable CL\nshow-variable _CL_\n");
    AddUnit(compiler, {"/c", "a.c"}, {{"CL", "/std:c11 /Fomine /DFIRST#1 /I \"with blank\""}, {"_CL_", "/DLAST"}});
    sandbox.SetVariable("CL", "/DRIVERS");
    AddUnit(compiler, {"/c", "b.c"});
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 2U) << result;
    EXPECT_EQ(calls[0].Setting("std"), "c11");
    for (const CoreCall& call : calls) {
        EXPECT_NE(call.preprocessed.find("// CL=(not set)\n// _CL_=(not set)\n"), std::string::npos)
            << call.preprocessed;
    }
    EXPECT_EQ(sandbox.CompilerCalls("cl", "/std:c11 /DFIRST=1 /I with blank /c /DLAST -DORVANTA /P /Fi"), 1U)
        << sandbox.Read("tools/cl.calls");
    EXPECT_GE(sandbox.CompilerCalls("cl", "/DRIVERS /c -DORVANTA"), 1U) << sandbox.Read("tools/cl.calls");
}

TEST_F(ClTest, CoresTextIsShownOnRequestOnly) {
    const std::string compiler = sandbox.AddCompiler("cl", Banner86);
    AddUnit(compiler, {"/std:c17", "/c", "a.c"});
    sandbox.WriteScript("a.c", {"stdout words of the core"});
    EXPECT_FALSE(sandbox.Analyze().Says("words of the core"));
    EXPECT_TRUE(sandbox.Analyze({"--print-stdout"}).Says("words of the core"));
}

TEST_F(ClTest, PreprocessingIsNoCompilation) {
    const std::string compiler = sandbox.AddCompiler("cl", Banner86);
    AddUnit(compiler, {"/std:c17", "/c", "a.c"});
    AddUnit(compiler, {"/nologo", "/EP", "/c", "b.c"});
    AddUnit(compiler, {"/nologo", "/Foa", "c.obj"});
    const RunResult result = sandbox.Analyze({"--verbose"});
    EXPECT_TRUE(result.Says("preprocessing only")) << result;
    EXPECT_TRUE(result.Says("link only")) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector<std::string>{"a.c"});
}

} // namespace

} // namespace Orvanta
