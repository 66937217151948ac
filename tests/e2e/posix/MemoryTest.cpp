// Guards against a unit that counts as failed because it ran beside others.

#include "e2e/support/SandboxTest.h"

#include <filesystem>

namespace Orvanta {

namespace {

class MemoryTest : public SandboxTest {};

// The core is killed where the large unit first runs, and then says whether the other one runs beside it.
TEST_F(MemoryTest, AUnitThatIsKilledForWantOfItRunsAgainAlone) {
    sandbox.Write("core", "#!/bin/sh\n"
                          "[ -f \"$2\" ] || exit 1\n"
                          "output=$(sed -n 's/^output-file=//p' \"$2\")\n"
                          "say() { printf '{\"falseAlarm\":false,\"level\":1,\"code\":\"V1\",\"message\":\"%s\","
                          "\"positions\":[{\"file\":\"/a.c\",\"line\":1}]}\\n' \"$1\" >> \"$output\"; }\n"
                          "case $(sed -n 's/^source-file=//p' \"$2\") in\n"
                          "small.c) touch small-runs; while [ ! -e killed ]; do sleep 0.01; done; sleep 0.3;"
                          " rm small-runs ;;\n"
                          "large.c) if [ ! -e killed ]; then say lost; while [ ! -e small-runs ]; do sleep 0.01; done;"
                          " touch killed; kill -9 $$; fi\n"
                          "    if [ -e small-runs ]; then say beside; else say alone; fi ;;\n"
                          "hopeless.c) echo 'terminate called: std::bad_alloc' >&2; exit 3 ;;\n"
                          "esac\n");
    std::filesystem::permissions(sandbox.Path("core"), std::filesystem::perms::owner_all);
    for (const char* const source : {"large.c", "small.c", "hopeless.c"}) {
        sandbox.Write(source, "int a;\n");
        sandbox.AddEntry({{"gcc", "-c", source}});
    }
    sandbox.WriteDatabase();
    const RunResult result = sandbox.Run({"analyze", "-j", "2", "--verbose", "--max-memory", "100G", "--bundle", "b",
                                          "--orvanta-path", sandbox.Path("core"), "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("(2 analyzed, 1 failed")) << result;
    EXPECT_TRUE(result.Says("  Out of memory, analyzed again alone: '" + sandbox.Path("large.c") + "'")) << result;
    EXPECT_TRUE(result.Says("Memory for all files at once: 102400 MB")) << result;
    EXPECT_TRUE(result.Says("Replay bundles: 1 in ")) << result;
    EXPECT_EQ(MessagesOf(Report()), std::vector<std::string>{"alone"});
}

} // namespace

} // namespace Orvanta
