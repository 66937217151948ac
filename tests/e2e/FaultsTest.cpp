// Guards against faults of the machine that end in a crash, in silence, or in a message without a name and a reason.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class FaultsTest : public SandboxTest {};

TEST_F(FaultsTest, VanishedFolderFailsItsUnitAlone) {
    sandbox.AddUnit("a.c");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-std=c11", "-c", "gone.c"}, sandbox.Path("vanished")});
    const RunResult result = sandbox.Analyze({"-o", "report.json", "-q"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("vanished/gone.c"))) << result;
    EXPECT_TRUE(result.Says("No such file or directory")) << result;
    EXPECT_EQ(sandbox.AnalyzedSources(), std::vector{sandbox.Path("a.c")});
}

TEST_F(FaultsTest, UnusableTemporaryFolderIsNamed) {
    sandbox.AddUnit("a.c");
    for (const char* const name : {"TMPDIR", "TMP", "TEMP"}) {
        sandbox.SetVariable(name, sandbox.Path("no-such-folder"));
    }
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: ")) << result;
    EXPECT_TRUE(result.Says(sandbox.Path("no-such-folder"))) << result;
    EXPECT_TRUE(sandbox.CoreCalls().empty());
}

TEST_F(FaultsTest, UnreadableSettingsFileIsNamed) {
    sandbox.AddUnit("a.c");
    sandbox.Write("folder.cfg/file", "");
    const RunResult result = sandbox.Analyze({"-c", "folder.cfg"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: Can't open config file " + sandbox.Path("folder.cfg") + "\n")) << result;
}

} // namespace

} // namespace Orvanta
