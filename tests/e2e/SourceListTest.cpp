// Guards against a list of source files that selects the wrong units, or nothing without a word.

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"

#include <filesystem>

namespace Orvanta {

namespace {

class SourceListTest : public SandboxTest {
protected:
    SourceListTest() {
        for (const char* const source : {"a.c", "sub/b.c", "c.c"}) {
            sandbox.AddUnit(source);
        }
    }
};

TEST_F(SourceListTest, SelectsUnitsByTheirOwnPath) {
    sandbox.Write("list.txt", "\n  ./sub/../sub/b.c \r\n" + sandbox.Path("c.c") + "\nnone.c\n");
    const RunResult result = sandbox.Analyze({"-S", "list.txt", "-o", "report.json", "--verbose"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("c.c"), sandbox.Path("sub/b.c")}));
    EXPECT_EQ(result.output.find("Using source list file: list.txt\n"), 0U) << result;
    EXPECT_TRUE(result.Says("Compiler invocations: 3 (2 analyzed, 0 failed, 1 skipped, 0 excluded)\n")) << result;
    EXPECT_TRUE(result.Says("Skipped: 1 not in the list of source files\n")) << result;
    EXPECT_TRUE(result.Says("Skipped: invocation 1 (" + sandbox.Path("a.c") + "): not in the list")) << result;
}

struct ListFault {
    const char* list;
    const char* message;
};

TEST_F(SourceListTest, ThatSelectsNothingEndsTheRunWithItsReason) {
    sandbox.Write("other.h", "");
    const ListFault rows[] = {
        {"", "Error: The list of source files is empty.\n"},
        {" \n\t\n", "Error: The list of source files is empty.\n"},
        {"none.c\nno/a.c\n", "Error: The list of source files does not contain valid paths.\n"},
        {"other.h\n", "\nNothing to analyze - no files from source files list were found.\n"},
        {"other.h\n", "\nWarning: no source file of the build is or includes "},
    };
    for (const ListFault& row : rows) {
        sandbox.Write("list.txt", row.list);
        const RunResult result = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(row.message)) << row.message << result;
        EXPECT_FALSE(sandbox.Exists("report.json"));
    }
    EXPECT_TRUE(sandbox.AnalyzedSources().empty());
}

TEST_F(SourceListTest, SelectsUnitsByWhatTheyInclude) {
    sandbox.Write("inner.h", "int inner;\n");
    sandbox.Write("outer.h", "#include \"inner.h\"\n");
    sandbox.Write("other.h", "");
    sandbox.Write("a.c", "#include \"outer.h\"\n");
    sandbox.Write("list.txt", "inner.h\nother.h\nc.c\n");
    const RunResult first = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
    EXPECT_EQ(first.exitCode, 0) << first;
    EXPECT_TRUE(first.Says("Couldn't find depend_info.json. Generating new one\n")) << first;
    EXPECT_TRUE(first.Says("[ 50%] Parsing includes: ")) << first;
    EXPECT_TRUE(first.Says("Warning: no source file of the build is or includes " + sandbox.Path("other.h") + "\n"))
        << first;
    EXPECT_FALSE(first.Says(sandbox.Path("inner.h"))) << first;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("a.c"), sandbox.Path("c.c")}));
    EXPECT_EQ(Report().size(), 2U);

    // What is known stays known, and what is out of date is listed again before the selection.
    sandbox.ForgetCoreCalls();
    sandbox.Write("sub/b.c", "#include \"../inner.h\"\n");
    const RunResult second = sandbox.Analyze({"--dep-file", "inner.h", "-o", "report.json"});
    EXPECT_EQ(second.exitCode, 0) << second;
    EXPECT_EQ(second.Count("%] Parsing includes: "), 1U) << second;
    EXPECT_EQ(sandbox.AnalyzedSources(), (std::vector{sandbox.Path("a.c"), sandbox.Path("sub/b.c")}));
    EXPECT_EQ(Report().size(), 2U);
}

TEST_F(SourceListTest, AUnitWhoseDependenciesCannotBeListedHasFailed) {
    sandbox.WriteScript("a.c", {"listing exit 4"});
    sandbox.Write("list.txt", "c.c\n");
    const RunResult result = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("a.c") + ": Its dependencies could not be listed: ")) << result;
    EXPECT_TRUE(result.Says("3 (1 analyzed, 1 failed, 1 skipped")) << result;
}

// As version control prints them: from the checkout's root, with files that are gone.
TEST_F(SourceListTest, TakesTheListOfAVersionControl) {
    sandbox.Write("gone.h", "int gone;\n");
    sandbox.Write("a.c", "#include \"gone.h\"\n");
    sandbox.Write("checkout/.git", "");
    sandbox.AddUnit("checkout/sub/d.c");
    sandbox.AddUnit("checkout/lib/d.c");
    ASSERT_EQ(sandbox.Analyze({"-i", "-o", "report.json"}).exitCode, 0);
    std::filesystem::remove(NativePath(sandbox.Path("gone.h")));
    sandbox.Write("a.c", "int a;\n");
    sandbox.ForgetCoreCalls();
    sandbox.Write("list.txt", "gone.h\nnever.h\n");
    const RunResult gone = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
    EXPECT_EQ(gone.exitCode, 0) << gone;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector{sandbox.Path("a.c")}) << gone;
    EXPECT_TRUE(gone.Says("Warning: no source file of the build is or includes " + sandbox.Path("never.h") + "\n"))
        << gone;
    EXPECT_EQ(gone.Count("Warning: "), 1U) << gone;

    sandbox.ForgetCoreCalls();
    sandbox.Write("checkout/sub/list.txt", "lib/d.c\n");
    Arguments command =
        Sandbox::AnalyzeCommand({"-f", sandbox.Path("compile_commands.json"), "-S", "list.txt", "-o", "report.json"});
    const RunResult fromBelow =
        RunningDriver(command, sandbox.Path("checkout/sub"), sandbox.DriverEnvironment()).Wait();
    EXPECT_EQ(fromBelow.exitCode, 0) << fromBelow;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector{sandbox.Path("checkout/lib/d.c")}) << fromBelow;
}

} // namespace

} // namespace Orvanta
