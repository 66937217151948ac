// Guards against a run whose order shows in its report, that begins with what is short, or that tells other times than
// its units took.

#include "e2e/support/SandboxTest.h"
#include "history/UnitCosts.h"

#include <chrono>
#include <memory>

namespace Orvanta {

namespace {

class WatchTest : public SandboxTest {
protected:
    /// What an earlier run would have left: seconds for each source, in the order of the database.
    void LeaveCosts(const std::vector<std::pair<std::string, int>>& costs) const {
        sandbox.Write(".Orvanta/.gitignore", "*\n");
        UnitCosts kept(sandbox.Path(".Orvanta"));
        for (const auto& [source, seconds] : costs) {
            CompileCommand command;
            command.absoluteDirectory = std::make_shared<const std::string>(sandbox.Path());
            command.arguments = ArgumentList(
                Arguments{sandbox.Path("tools/fake-gcc"), "-std=c17", "-c", sandbox.Path(source), "-o", "unit.o"});
            command.source.index = 3;
            UnitCost cost;
            cost.core.wall = std::chrono::seconds(seconds);
            kept.Record(CostKind::Analysis, CostKeyOf(command), cost);
        }
        kept.Save(costs.size());
    }
};

TEST_F(WatchTest, WhatTookLongBeginsFirstAndIsReportedWhereItStands) {
    for (const char* const source : {"a.c", "b.c", "c.c", "d.c"}) {
        sandbox.AddUnit(source);
    }
    const auto lines = [this] {
        const std::vector<std::string> all = sandbox.Analyze({"-j", "1", "-o", "report.json"}).Lines();
        std::string names;
        for (const std::string& line : all) {
            names += line.find("Analyzing: ") == std::string::npos ? "" : line.substr(line.size() - 3);
        }
        return names;
    };
    EXPECT_EQ(lines(), "a.cb.cc.cd.c") << "nothing is known: input order";
    const std::string report = sandbox.Read("report.json");
    LeaveCosts({{"b.c", 100}, {"c.c", 0}, {"d.c", 3000}, {"a.c", 0}});
    EXPECT_EQ(lines(), "d.cb.ca.cc.c");
    EXPECT_EQ(sandbox.Read("report.json"), report);
}

} // namespace

} // namespace Orvanta
