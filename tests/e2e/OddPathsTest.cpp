// Guards against quoting, encoding and format limits that mangle a path on its way through the driver.

#include "e2e/support/OddNames.h"
#include "e2e/support/SandboxTest.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

class OddPathsTest : public SandboxTest {};

TEST_F(OddPathsTest, SurviveFromTheDatabaseToTheReport) {
    const std::string compiler = sandbox.AddCompiler("fake gcc #1", "gcc 12\n");
    std::vector<std::string> names = {
        "plain/with blank",       "it's/a 'quote'", "#hash/#c", "a=b/key=value", "gr\xC3\xBC\xC3\x9F/\xE6\xBA\x90",
        "semi;colon/$HOME & `x`", "%1%/%2%",        "-dash/-c", "@at/@f",
    };
    const std::vector<std::string> more = OddNamesOfThisSystem();
    names.insert(names.end(), more.begin(), more.end());
    std::vector<Finding> expected;
    for (const std::string& name : names) {
        const std::string folder = sandbox.Path(name.substr(0, name.find('/')));
        const std::string file = name.substr(name.find('/') + 1) + ".c";
        sandbox.Write(name + ".c", "int x;\n");
        sandbox.WriteScript(name + ".c", {"finding V501 1 2 found"});
        sandbox.AddEntry({{compiler, "-std=c11", "-c", JoinPath(folder, file)}, folder});
        expected.push_back({"V501", 1, JoinPath(folder, file), 2, "found"});
    }
    const std::string report = "re port #1=\xC3\xA4'.json";
    const RunResult result = sandbox.Analyze({"-o", report});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Report(report), expected) << result;
    for (const Finding& finding : expected) {
        EXPECT_TRUE(result.Says("%] Analyzing: " + finding.file + "\n")) << result;
    }
}

TEST_F(OddPathsTest, VeryLongCommandIsNoProblem) {
    Arguments defines;
    for (int number = 0; number < 3000; ++number) {
        defines.push_back("-DMACRO_WITH_A_LONG_NAME_" + std::to_string(number) + "=1");
    }
    sandbox.AddUnit(std::string(200, 'n') + ".c", {}, defines);
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Report().size(), 1U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-DMACRO_WITH_A_LONG_NAME_0=1 "), 1U);
    EXPECT_EQ(sandbox.CompilerCalls("fake-gcc", "-DMACRO_WITH_A_LONG_NAME_2999=1 "), 1U);
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

} // namespace

} // namespace Orvanta
