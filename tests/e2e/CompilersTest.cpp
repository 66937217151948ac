// Guards against a core that is told the wrong thing about a unit, and against compilers that are asked too often.

#include "e2e/support/SandboxTest.h"

#include <algorithm>

namespace Orvanta {

namespace {

class CompilersTest : public SandboxTest {};

using Settings = std::vector<std::pair<std::string, std::string>>;

struct UnitCase {
    const char* compiler;
    Arguments flags;
    const char* source;
    Settings differing; // from the settings of a plain C unit
};

Settings ExpectedSettings(const UnitCase& unit, const CoreCall& call) {
    Settings expected{
        {"analysis-mode", "4"},
        {"fshort-double", "no"},
        {"fshort-float", "no"},
        {"funsigned-char", "no"},
        {"i-file", call.Setting("i-file")},
        {"language", "C"},
        {"new-output-format", "yes"},
        {"output-file", call.Setting("output-file")},
        {"platform", "x64"},
        {"preprocessor", "gcc"},
        {"source-file", unit.source},
        {"std", "c17"},
    };
    for (const auto& [key, value] : unit.differing) {
        std::find_if(expected.begin(), expected.end(), [&](const auto& entry) { return entry.first == key; })->second =
            value;
    }
    return expected;
}

TEST_F(CompilersTest, CoreIsToldWhatTheCommandSays) {
    sandbox.AddCompiler("some-gcc", "some-gcc (GCC) 12.2.0\n", "std-number 201710L\n");
    sandbox.AddCompiler("some-g++", "some-g++ (GCC) 12.2.0\n", "std-number 201703L\n");
    sandbox.AddCompiler("some-clang", "not asked", "std-number 201710L\n");
    const UnitCase cases[] = {
        {"some-gcc", {}, "a.c", {}},
        {"some-gcc", {"-std=c99", "-m32"}, "b.c", {{"platform", "linux32"}, {"std", "c99"}}},
        {"some-gcc", {"-m64", "-std=c2x"}, "c.c", {{"platform", "linux64"}, {"std", "c20"}}},
        {"some-gcc", {"-ansi", "-funsigned-char"}, "d.c", {{"funsigned-char", "yes"}, {"std", "c90"}}},
        {"some-gcc", {"-ansi"}, "e.cc", {{"language", "C++"}, {"std", "c++98"}}},
        {"some-gcc", {"-x", "c", "-std=gnu11"}, "f.cpp", {{"std", "c11"}}},
        {"some-gcc", {"-xc++", "-std=c++20"}, "g.c", {{"language", "C++"}, {"std", "c++20"}}},
        {"some-gcc", {"-std=c++14"}, "h.C", {{"language", "C++"}, {"std", "c++14"}}},
        {"some-g++", {}, "i.c", {{"language", "C++"}, {"std", "c++17"}}},
        {"some-clang", {"-std=gnu++17"}, "j.cpp", {{"language", "C++"}, {"preprocessor", "clang"}, {"std", "c++17"}}},
        {"some-clang", {"-std=gnu18"}, "k.c", {{"preprocessor", "clang"}}},
    };
    for (const UnitCase& unit : cases) {
        sandbox.Write(unit.source, "int x;\n");
        Entry entry{{sandbox.Path(std::string("tools/") + unit.compiler)}};
        entry.arguments.insert(entry.arguments.end(), unit.flags.begin(), unit.flags.end());
        entry.arguments.insert(entry.arguments.end(), {"-c", unit.source});
        sandbox.AddEntry(entry);
    }
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), std::size(cases)) << result;
    for (std::size_t index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(calls[index].settings, ExpectedSettings(cases[index], calls[index])) << cases[index].source;
        EXPECT_TRUE(calls[index].Setting("i-file").ends_with(".Orvanta.i")) << calls[index].Setting("i-file");
        EXPECT_EQ(calls[index].directory, sandbox.Path());
        EXPECT_EQ(calls[index].arguments.size(), 3U);
    }
}

TEST_F(CompilersTest, UsersKeysAreCopiedAndTheUnitsOwnFactsWin) {
    sandbox.AddUnit("a.c");
    sandbox.Write("my.cfg",
                  "output-file=mine.json\nsource-file=other.c\nlanguage=C++\nstd=c++20\nnew-output-format=yes\n"
                  "i-file=x.i\nunknown=1\nunknown=2\nfunsigned-char=yes\n");
    const RunResult result = sandbox.Analyze({"-c", "my.cfg"});
    EXPECT_EQ(result.exitCode, 0) << result;
    ASSERT_EQ(sandbox.CoreCalls().size(), 1U);
    const CoreCall call = sandbox.CoreCalls().front();
    EXPECT_EQ(call.Setting("source-file"), sandbox.Path("a.c"));
    EXPECT_EQ(call.Setting("language"), "C");
    EXPECT_EQ(call.Setting("std"), "c++20");
    EXPECT_EQ(call.Setting("funsigned-char"), "yes");
    EXPECT_EQ(call.Setting("unknown"), "2");
    EXPECT_NE(call.Setting("i-file"), "x.i");
    EXPECT_NE(call.Setting("output-file"), "mine.json");
    const std::vector<std::string> keys = call.Keys();
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
    EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end()) << "a key stands twice";
    EXPECT_EQ(Report("mine.json").size(), 1U) << "the report that the settings file names";
}

TEST_F(CompilersTest, PreprocessingCommandKeepsWhatMatters) {
    sandbox.AddUnit("a.c", {},
                    {"-O2", "-g3", "-MD", "-MF", "deps.d", "-DX=1", "-I", "inc", "-Iglued", "-include", "f.h"});
    const RunResult result = sandbox.Analyze({"--dump-files"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-std=c17 -DX=1 -I inc -Iglued -include f.h -"), 1U)
        << sandbox.Read("tools/fake-gcc.calls");
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", " -DORVANTA -w -E -o "), 1U) << sandbox.Read("tools/fake-gcc.calls");
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", ".Orvanta.i " + sandbox.Path("a.c")), 1U);
    for (const char* const dropped : {"deps.d", "-O2", "-g3", "-MD", "unit.o"}) {
        EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", dropped), 0U) << dropped;
    }
}

TEST_F(CompilersTest, CompilerIsAskedOncePerPathAndStandard) {
    sandbox.AddCompiler("fake-gcc", "gcc 12\n", "std-number 201112L\n");
    sandbox.AddCompiler("fake-clang", "", "std-number 201112L\n");
    for (int unit = 0; unit < 12; ++unit) {
        const std::string source = "unit" + std::to_string(unit) + ".c";
        sandbox.Write(source, "int x;\n");
        sandbox.AddEntry({{sandbox.Path(unit % 2 == 0 ? "tools/fake-gcc" : "tools/fake-clang"), "-c", source}});
    }
    const RunResult result = sandbox.Analyze({"-j", "4"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "--version"), 1U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-clang", "--version"), 0U) << "its name says what it is";
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "__std_test__.Orvanta.c"), 1U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-clang", "__std_test__.Orvanta.c"), 1U);
    for (const CoreCall& call : sandbox.CoreCalls()) {
        EXPECT_EQ(call.Setting("std"), "c11");
    }
}

TEST_F(CompilersTest, CompilerIsFoundAsTheCommandWouldFindIt) {
    sandbox.AddCompiler("my-gcc", "gcc 12\n");
    sandbox.Write("a.c", "int a;\n");
    sandbox.Write("b.c", "int b;\n");
    sandbox.AddEntry({{"my-gcc", "-std=c11", "-c", "a.c"}, "", {{"PATH", sandbox.Path("tools")}}});
    sandbox.AddEntry({{"../tools/my-gcc", "-std=c11", "-c", sandbox.Path("b.c")}, sandbox.Path("records")});
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.CoreCalls().size(), 2U) << result;
    EXPECT_EQ(sandbox.CompilerCalls("my-gcc", "-E"), 2U);
}

TEST_F(CompilersTest, SourcesInSystemFoldersAreLeftOutUnlessWanted) {
    sandbox.AddUnit("sys/a.c", {}, {"-isystem", "sys"});
    sandbox.AddUnit("b.c", {}, {"-isystem", "sys", "--sysroot=/"});
    EXPECT_EQ(sandbox.Analyze().exitCode, 0);
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector{sandbox.Path("b.c")});
    sandbox.ForgetCoreCalls();
    EXPECT_EQ(sandbox.Analyze({"--analyze-specified-system-paths"}).exitCode, 0);
    EXPECT_EQ(sandbox.CoreCalls().size(), 2U);
}

TEST_F(CompilersTest, ImportsOfModulesAreToldOnce) {
    for (const auto& [source, text] :
         {std::pair{"plain.cpp", "int x;\n"}, {"a.cpp", "import m;\n"}, {"b.cpp", "module m;\n"}}) {
        sandbox.AddUnit(source, {}, {"-std=c++20"});
        sandbox.Write(source, text);
    }
    const RunResult result = sandbox.Analyze({"-j", "2"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.Count("Source files that import modules: 2, the first is " + sandbox.Path("a.cpp") + "."), 1U)
        << result;
}

} // namespace

} // namespace Orvanta
