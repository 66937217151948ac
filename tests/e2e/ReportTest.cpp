// Guards against findings that are lost, doubled, torn apart or put in an order that depends on timing.

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"

#include <filesystem>

namespace Orvanta {

namespace {

class ReportTest : public SandboxTest {
protected:
    /// Units whose cores end in the reverse order within every group of `group`: each waits for the next one.
    void WriteUnitsThatEndInReverse(std::size_t group) {
        for (std::size_t unit = 0; unit < Units; ++unit) {
            std::vector<std::string> steps{"finding V501 1 " + std::to_string(unit + 1) + " first"};
            if (unit % group + 1 < group) {
                steps.push_back("wait-for " + DoneFile(unit + 1, group));
            }
            steps.push_back("finding V502 2 " + std::to_string(unit + 1) + " second");
            steps.push_back("touch " + DoneFile(unit, group));
            sandbox.WriteScript(SourceOf(unit), steps);
        }
    }

    static std::string SourceOf(std::size_t unit) { return "unit" + std::to_string(unit) + ".c"; }

    std::string DoneFile(std::size_t unit, std::size_t group) const {
        return sandbox.Path("done-" + std::to_string(group) + "-" + std::to_string(unit));
    }

    static constexpr std::size_t Units = 24;
};

TEST_F(ReportTest, IsTheSameForEveryNumberOfThreads) {
    for (std::size_t unit = 0; unit < Units; ++unit) {
        sandbox.AddUnit(SourceOf(unit));
    }
    for (const char* const name : {"report.json", "report.jsonl"}) {
        std::string first;
        for (const std::size_t threads : {1U, 2U, 8U}) {
            // They wait for each other in input order, which a run that knows what they took may leave.
            std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta")));
            WriteUnitsThatEndInReverse(threads);
            const RunResult result = sandbox.Analyze({"-j", std::to_string(threads), "-o", name});
            EXPECT_EQ(result.exitCode, 0) << result;
            for (std::size_t unit = 0; unit < Units; ++unit) {
                std::filesystem::remove(DoneFile(unit, threads));
            }
            // Or the units that have waited longest begin first, and those that they wait for do not.
            std::filesystem::remove(NativePath(sandbox.Path(".Orvanta/unit_costs.bin")));
            const std::string report = sandbox.Read(name);
            first = first.empty() ? report : first;
            EXPECT_EQ(report, first) << threads << " threads";
        }
    }
    const std::vector<Finding> findings = Report();
    EXPECT_EQ(findings, FindingsOfLines(sandbox.Read("report.jsonl")));
    ASSERT_EQ(findings.size(), 2 * Units);
    for (std::size_t index = 0; index < findings.size(); ++index) {
        EXPECT_EQ(findings[index].file, sandbox.Path(SourceOf(index / 2)));
        EXPECT_EQ(findings[index].message, index % 2 == 0 ? "first" : "second");
    }
}

TEST_F(ReportTest, FormFollowsTheNameAndTheSetting) {
    sandbox.AddUnit("a.c", {"finding V501 1 3 Text with \"quotes\" and <tags>"});
    sandbox.Write("raw.cfg", "new-output-format=no\n");

    EXPECT_EQ(sandbox.Analyze({"-o", "report.json"}).exitCode, 0);
    EXPECT_EQ(sandbox.Analyze({"-o", "report.txt"}).exitCode, 0);
    const std::vector<Finding> expected{{"V501", 1, sandbox.Path("a.c"), 3, "Text with \"quotes\" and <tags>"}};
    EXPECT_EQ(Report(), expected);
    EXPECT_EQ(FindingsOfLines(sandbox.Read("report.txt")), expected);

    EXPECT_EQ(sandbox.Analyze({"-o", "raw.json", "-c", "raw.cfg"}).exitCode, 0);
    EXPECT_EQ(sandbox.Analyze({"-o", "raw.txt", "-c", "raw.cfg"}).exitCode, 0);
    EXPECT_EQ(Report("raw.json"), expected);
    EXPECT_EQ(sandbox.Read("raw.txt"), "Zelm64-EM<#~>full<#~>3<#~>" + sandbox.Path("a.c") +
                                           "<#~>error<#~>V501<#~>Text with \"quotes\" and <tags><#~>false<#~>1<#~>"
                                           "before<#~>at<#~>after<#~>3<#~>\n");
}

TEST_F(ReportTest, GoesToStandardOutputWhenNoFileIsNamed) {
    sandbox.AddUnit("a.c", {"finding V501 1 1 one", "finding V502 1 2 two"});
    sandbox.AddUnit("b.c", {"finding V503 1 1 three"});
    const RunResult result = sandbox.Analyze({"-q", "-j", "2"});
    EXPECT_EQ(result.exitCode, 0) << result;
    std::string lines;
    for (const std::string& line : result.Lines()) {
        lines += line.starts_with('{') ? line + "\n" : "";
    }
    EXPECT_EQ(MessagesOf(FindingsOfLines(lines)), (std::vector<std::string>{"one", "two", "three"})) << result;
}

TEST_F(ReportTest, WhatTheCoreSaysIsShown) {
    sandbox.AddUnit("a.c", {"stdout core says hello", "finding V501 1 1 one"});
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_TRUE(result.Says("core says hello\n")) << result;
    EXPECT_EQ(Report().size(), 1U);
}

TEST_F(ReportTest, FindingInASharedHeaderStandsOnce) {
    const std::string shared = "finding-in /usr/shared.h V501 1 7 same text";
    sandbox.AddUnit("a.c", {shared, shared, "finding V501 1 7 same text"});
    sandbox.AddUnit("b.c", {shared, "finding-in /usr/shared.h V501 1 8 same text"});
    EXPECT_EQ(sandbox.Analyze({"-o", "report.json"}).exitCode, 0);
    const std::vector<Finding> findings = Report();
    const std::vector<Finding> expected{
        {"V501", 1, "/usr/shared.h", 7, "same text"},
        {"V501", 1, sandbox.Path("a.c"), 7, "same text"},
        {"V501", 1, "/usr/shared.h", 8, "same text"},
    };
    EXPECT_EQ(findings, expected);
}

TEST_F(ReportTest, LineThatIsNoFindingFailsItsUnitAlone) {
    sandbox.AddUnit("a.c", {"finding V501 1 1 good"});
    sandbox.AddUnit("bad-json.c", {"raw-line {\"level\": \"high\"}"});
    sandbox.AddUnit("bad-raw.c", {"raw-line some<#~>thing else"});
    sandbox.AddUnit("bad-end.c", {"partial-line"});
    sandbox.AddUnit("z.c", {"finding V501 1 1 also good", "raw-line "});
    const RunResult result = sandbox.Analyze({"-o", "report.json", "-q"});
    EXPECT_EQ(result.exitCode, 1) << result;
    for (const char* const source : {"bad-json.c", "bad-raw.c", "bad-end.c"}) {
        EXPECT_TRUE(result.Says(sandbox.Path(source))) << source << result;
    }
    EXPECT_FALSE(result.Says(sandbox.Path("z.c"))) << result;
    EXPECT_EQ(MessagesOf(Report()), (std::vector<std::string>{"good", "also good"}));
}

TEST_F(ReportTest, CoreWithoutAnOutputFileFoundNothing) {
    sandbox.AddUnit("a.c", {"no-output-file"});
    const RunResult result = sandbox.Analyze({"-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(Report().empty());
}

TEST_F(ReportTest, UnwritableReportIsAnErrorBeforeTheFirstUnit) {
    sandbox.AddUnit("a.c");
    std::filesystem::create_directory(sandbox.Path("folder.json"));
    for (const char* const name : {"folder.json", "no/such/folder/report.json", "a.c/report.json"}) {
        const RunResult result = sandbox.Analyze({"-o", name});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says("Error: ")) << result;
        EXPECT_TRUE(result.Says(sandbox.Path(name))) << result;
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(ReportTest, ReplacesAnEarlierOneAndLeavesNothingBesideIt) {
    sandbox.AddUnit("a.c", {"finding V501 1 1 new"});
    std::filesystem::create_directory(sandbox.Path("out"));
    sandbox.Write("out/report.json", std::string(100000, 'x'));
    EXPECT_EQ(sandbox.Analyze({"-o", "out/report.json"}).exitCode, 0);
    EXPECT_EQ(MessagesOf(Report("out/report.json")), std::vector<std::string>{"new"});
    for (const auto& file : std::filesystem::directory_iterator(sandbox.Path("out"))) {
        const std::string name = file.path().filename().string();
        EXPECT_TRUE(name == "report.json" || name == ".Orvanta") << name;
    }
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

} // namespace

} // namespace Orvanta
