// Guards against a list of source files that selects the wrong units, or nothing without a word.

#include "e2e/support/SandboxTest.h"

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
        {"",                 "Error: The list of source files is empty.\n"                         },
        {" \n\t\n",          "Error: The list of source files is empty.\n"                         },
        {"none.c\nno/a.c\n", "Error: The list of source files does not contain valid paths.\n"     },
        {"other.h\n",        "\nNothing to analyze - no files from source files list were found.\n"},
    };
    for (const ListFault& row : rows) {
        sandbox.Write("list.txt", row.list);
        const RunResult result = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says(row.message)) << row.message << result;
        EXPECT_FALSE(sandbox.Exists("report.json"));
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

} // namespace

} // namespace Orvanta
