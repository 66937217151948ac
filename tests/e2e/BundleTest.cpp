// Guards against a bundle that replays something else than what went wrong, that needs the machine it comes from, that
// costs a unit its result, or that takes the place of somebody else's files.

#include "e2e/support/SandboxTest.h"
#include "platform/Paths.h"

#include <filesystem>

namespace Orvanta {

namespace {

class BundleTest : public SandboxTest {
protected:
    /// The folders of bundles, by their names relative to the sandbox.
    [[nodiscard]] std::vector<std::string> Bundles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(sandbox.Path("bundles"))) {
            names.push_back("bundles/" + entry.path().filename().string());
        }
        return names;
    }

    /// Replays one with a core, from another folder and with hardly any environment.
    [[nodiscard]] int Replay(const std::string& bundle, const std::string& core) const {
        const bool isWindows = HostPathRules() == PathRules::Windows;
        const std::string script = sandbox.Path(bundle + (isWindows ? "/replay.cmd" : "/replay.sh"));
        const Arguments command = isWindows ? Arguments{"cmd", "/c", script, core} : Arguments{"sh", script, core};
        Environment environment;
        for (const char* const name : {"PATH", "SystemRoot", "SYSTEMROOT", "WINEPREFIX", "TMPDIR"}) {
            if (const auto value = EnvironmentVariable(name)) {
                environment.emplace(name, *value);
            }
        }
        sandbox.Write("empty/none", "");
        Process process(
            command, sandbox.Path("empty"), EnvironmentBlock(environment), [](std::string_view) {},
            [](std::string_view) {});
        return process.get_exit_status();
    }
};

TEST_F(BundleTest, OfAFailedUnitGivesItsCodeAndFindings) {
    sandbox.AddUnit("fails.c", {"finding V501 1 1 before", "exit 7"});
    sandbox.AddUnit("works.c");
    sandbox.AddUnit("broken.c");
    sandbox.Write("broken.c.compiler", "stderr broken.c: error: no\nexit 3\n");
    const RunResult result = sandbox.Analyze({"--bundle", "bundles", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Replay bundles: 2 in " + sandbox.Path("bundles"))) << result;
    const std::vector<std::string> bundles = Bundles();
    ASSERT_EQ(bundles.size(), 2U);
    for (const std::string& bundle : bundles) {
        const bool isOfCompiler = bundle.starts_with("bundles/broken.c-");
        EXPECT_EQ(Replay(bundle, FakeCoreProgram()), isOfCompiler ? 3 : 7) << bundle;
        if (!isOfCompiler) {
            EXPECT_EQ(sandbox.Read(bundle + "/replayed.findings"), sandbox.Read(bundle + "/expected.findings"));
        }
    }
    // The next run replaces its own, what the replays have left included; a wanted unit gets one, too.
    const RunResult again = sandbox.Analyze({"--bundle", "bundles", "--bundle-unit", "works.c", "-o", "report.json"});
    EXPECT_TRUE(again.Says("Replay bundles: 3 in ")) << again;
    EXPECT_EQ(Bundles().size(), 3U);
    EXPECT_FALSE(sandbox.Exists(bundles.front() + "/replayed.findings"));
}

TEST_F(BundleTest, ThatCannotBeWrittenCostsItsUnitNothing) {
    sandbox.AddUnit("a.c");
    const Arguments options = {"--bundle", "bundles", "--bundle-unit", "a.c", "-o", "report.json"};
    EXPECT_EQ(sandbox.Analyze(options).exitCode, 0);
    const std::string bundle = Bundles().front();
    std::filesystem::remove(sandbox.Path(bundle + "/bundle.json"));
    sandbox.Write(bundle + "/mine", "not a bundle's");
    const RunResult result = sandbox.Analyze(options);
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("can't be written: " + sandbox.Path(bundle) + " is no replay bundle")) << result;
    EXPECT_TRUE(sandbox.Exists(bundle + "/mine"));
    EXPECT_EQ(Bundles().size(), 1U);
    for (const Arguments& wrong : {Arguments{"--scrub"}, Arguments{"--bundle-unit", "a.c"},
                                   Arguments{"--bundle", "a.c"}, Arguments{"--bundle", "b", "--bundle-slow", "0"}}) {
        EXPECT_EQ(sandbox.Analyze(wrong).exitCode, 1);
    }
}

} // namespace

} // namespace Orvanta
