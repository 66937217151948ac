// Guards against a converter that takes a report in a pipe for one of another form, or loses what comes late.

#include "e2e/support/SandboxTest.h"

namespace Orvanta {

namespace {

class ConverterPipeTest : public SandboxTest {
protected:
    RunResult Shell(const std::string& commands) const {
        Environment environment = sandbox.DriverEnvironment();
        environment["CONVERTER"] = ConverterProgram();
        return RunningDriver({"/bin/sh", "-c", commands}, sandbox.Path(), environment).Wait();
    }
};

TEST_F(ConverterPipeTest, ReadsAndWritesReportsOfEveryForm) {
    sandbox.Write("r.log", "a.c:1:1: error: one\nb.c:2:1: note: two\n");
    const RunResult result = Shell("\"$CONVERTER\" r.log -t json -o - | \"$CONVERTER\" - -t raw -o - | "
                                   "(read -r first; echo \"$first\"; cat) | \"$CONVERTER\" - -t text -o -");
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.output, "a.c:1:1: error: one [External]\nb.c:2:1: note: two [External]\n");

    const RunResult bad = Shell("echo '{\"warnings\": [3]}' | \"$CONVERTER\" - -t text -o out.txt");
    EXPECT_EQ(bad.exitCode, 1) << bad;
    EXPECT_TRUE(bad.Says("Error: standard input, entry 1: ")) << bad;

    const RunResult full = Shell("\"$CONVERTER\" r.log -t text -o - >/dev/full");
    EXPECT_EQ(full.exitCode, 1) << full;
}

} // namespace

} // namespace Orvanta
