// Guards against a run whose order shows in its report, that begins with what is short, or that tells other times than
// its units took.

#include "e2e/support/KeptCosts.h"
#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace Orvanta {

namespace {

class WatchTest : public SandboxTest {};

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
    LeaveCosts(sandbox, {{"b.c", 100}, {"c.c", 0}, {"d.c", 3000}, {"a.c", 0}});
    EXPECT_EQ(lines(), "d.cb.ca.cc.c");
    EXPECT_EQ(sandbox.Read("report.json"), report);
}

TEST_F(WatchTest, StatisticsTellOfEveryInvocationAndTakeNoOtherFilesPlace) {
    sandbox.AddUnit("a.c");
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "a.o", "-o", "a"}});
    sandbox.AddUnit("bad.c", {"exit 3"});
    sandbox.AddUnit("out.c");
    const RunResult result = sandbox.Analyze({"-o", "report.json", "--stats", "stats.json", "-e", "out.c"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_FALSE(result.Says("Slowest files")) << "nobody looks on";
    std::string fates;
    std::istringstream lines(sandbox.Read("stats.json"));
    for (std::string text; std::getline(lines, text);) {
        const auto line = nlohmann::json::parse(text);
        fates += line.at("fate").get<std::string>() + ' ';
        EXPECT_EQ(line.at("invocation"), std::count(fates.begin(), fates.end(), ' ')) << "in input order";
        const bool hasRun = line.at("unit") == sandbox.Path("a.c") || line.at("unit") == sandbox.Path("bad.c");
        EXPECT_EQ(line.contains("core"), hasRun) << line;
        EXPECT_EQ(line.value("textBytes", 0) > 0, hasRun) << line;
        EXPECT_EQ(line.contains("reason"), line.at("fate") == "failed" || line.at("fate") == "skipped") << line;
    }
    EXPECT_EQ(fates, "analyzed skipped failed excluded ");

    const RunResult verbose = sandbox.Analyze({"--verbose", "-e", "out.c"});
    EXPECT_TRUE(verbose.Says("Slowest files:\n  0:00:0")) << verbose;
    EXPECT_TRUE(verbose.Says("  " + sandbox.Path("bad.c") + "\n")) << verbose;
    const std::string source = sandbox.Read("a.c");
    for (const Arguments& options : {Arguments{"--stats", "a.c"},
                                     {"--stats", "x.json", "-o", "x.json"},
                                     {"--stats", "none/stats.json"},
                                     {"--stats", "compile_commands.json"}}) {
        const RunResult refused = sandbox.Analyze(options);
        EXPECT_EQ(refused.exitCode, 1) << refused;
        EXPECT_TRUE(refused.Says("Error: ")) << refused;
        EXPECT_FALSE(refused.Says("Analyzing: ")) << refused;
    }
    EXPECT_EQ(sandbox.Read("a.c"), source);
}

} // namespace

} // namespace Orvanta
