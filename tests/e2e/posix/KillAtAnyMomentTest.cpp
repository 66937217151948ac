// Guards against a report that is torn when the driver is killed, at whatever moment, and against files that killed
// runs leave for ever. Not for both systems: killing a process that is just starting crashes the server of Wine.

#include "e2e/support/SandboxTest.h"
#include "support/Seed.h"

#include <chrono>
#include <random>
#include <thread>

namespace Orvanta {

namespace {

class KillAtAnyMomentTest : public SandboxTest {
protected:
    static constexpr int Units = 60;

    void AddUnits() {
        for (int unit = 0; unit < Units; ++unit) {
            const std::string source = "unit" + std::to_string(unit) + ".c";
            sandbox.AddUnit(source, {"finding V501 1 1 first of " + source, "finding V502 2 2 second of " + source});
        }
    }

    /// Whether the findings are those of a whole number of units, in input order.
    static bool AreWholeUnitsInOrder(const std::vector<Finding>& findings) {
        for (std::size_t index = 0; index < findings.size(); ++index) {
            const std::string source = "unit" + std::to_string(index / 2) + ".c";
            if (findings[index].message != (index % 2 == 0 ? "first of " : "second of ") + source) {
                return false;
            }
        }
        return findings.size() % 2 == 0;
    }
};

// The moments are spread at random over the length of a run; each must leave a report that reads as a whole.
TEST_F(KillAtAnyMomentTest, LeavesAWholeReport) {
    AddUnits();
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(sandbox.Analyze({"-q", "-j", "4", "-o", "report.json"}).exitCode, 0);
    const auto length = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);

    std::mt19937 random(ChosenSeed());
    std::uniform_int_distribution<std::int64_t> moment(0, length.count());
    for (int kill = 0; kill < 30; ++kill) {
        const bool isJson = kill % 2 == 0;
        const std::string name = "killed" + std::to_string(kill) + (isJson ? ".json" : ".jsonl");
        const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze({"-q", "-j", "4", "-o", name});
        const std::chrono::microseconds pause(moment(random));
        std::this_thread::sleep_for(pause);
        run->Kill();
        if (!sandbox.Exists(name)) {
            continue; // killed before there was a report
        }
        const std::string text = sandbox.Read(name);
        std::vector<Finding> findings;
        ASSERT_NO_THROW(findings = isJson ? FindingsOfReport(text) : FindingsOfLines(text))
            << "killed after " << pause.count() << " us; " << name << " holds: " << text;
        EXPECT_TRUE(AreWholeUnitsInOrder(findings)) << name;
    }
    // A core that outlives its killed driver for a moment may still write there.
    EXPECT_TRUE(HoldsSoon([&] {
        EXPECT_EQ(sandbox.Analyze({"-q", "-o", "report.json"}).exitCode, 0);
        return sandbox.Leftovers().empty();
    })) << "what the killed runs left is not cleared";
    EXPECT_EQ(Report().size(), 2U * Units);
}

// No next run is needed, neither for what hangs nor for what lies in the temporary folder.
TEST_F(KillAtAnyMomentTest, LeavesNoProcessAndNoTemporaryFile) {
    sandbox.AddUnit("a.c", {"spawn-hanging-child", "hang"});
    sandbox.AddUnit("b.c", {"spawn-hanging-child", "hang"});
    sandbox.AddUnit("c.c");
    sandbox.Write("c.c.compiler", "hang\n");
    const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze({"-q", "-j", "3", "-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] {
        return sandbox.Exists("records/core-of-a.c.hangs") && sandbox.Exists("records/core-of-b.c.hangs") &&
               sandbox.Exists("tools/compiler-of-c.c.hangs");
    }));
    const std::string keys[] = {"core-of-a.c", "child-of-a.c", "core-of-b.c", "child-of-b.c"};
    for (const std::string& key : keys) {
        ASSERT_TRUE(sandbox.IsAlive(key)) << key;
    }
    run->Kill();
    for (const std::string& key : keys) {
        EXPECT_TRUE(HoldsSoon([&] { return !sandbox.IsAlive(key); })) << key;
    }
    EXPECT_TRUE(HoldsSoon([&] { return sandbox.Leftovers().empty(); }));
}

} // namespace

} // namespace Orvanta
