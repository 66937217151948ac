// Guards against accepted findings that come back, new ones that are hidden with them, and reports or bases that a
// failing command has touched.

#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <vector>

namespace Orvanta {

namespace {

class SuppressionTest : public SandboxTest {
protected:
    void WriteReport(std::string_view name, const std::vector<std::string>& codes) const {
        std::string text;
        for (const std::string& code : codes) {
            nlohmann::ordered_json message = {
                {"falseAlarm", false},
                {"level", 1},
                {"code", code},
                {"message", "found by " + code},
                {"positions", {{{"file", "/p/src/test.c"}, {"line", code.size() + 18U}}}},
            };
            text += message.dump() + "\n";
        }
        sandbox.Write(name, text);
    }

    [[nodiscard]] std::vector<std::string> CodesOf(std::string_view name) const {
        std::vector<std::string> codes;
        for (const Finding& finding : FindingsOfLines(sandbox.Read(name))) {
            codes.push_back(finding.code);
        }
        return codes;
    }

    [[nodiscard]] std::size_t BaseSize(std::string_view name = "suppress_base.json") const {
        return nlohmann::json::parse(sandbox.Read(name)).at("warnings").size();
    }
};

TEST_F(SuppressionTest, CommandsSayWhatTheyDid) {
    WriteReport("r.log", {"V501", "V2501", "Help:", "V501"});
    RunResult result = sandbox.Run({"suppress", "r.log"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.output, "Suppressed messages: 2\nSuppress file: suppress_base.json\nLog file: r.log\n");

    WriteReport("r.log", {"V501", "V502", "Help:"});
    result = sandbox.Run({"filter-suppressed", "r.log"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(result.output, "Suppress file: suppress_base.json\nTotal messages: 3\nFiltered messages: 2\n");
    EXPECT_EQ(CodesOf("r.log"), (std::vector<std::string>{"V502", "Help:"}));
    EXPECT_FALSE(sandbox.Exists("r.log.new"));

    result = sandbox.Run({"filter-suppressed", "r.log", "-o", "out.json", "-s", "suppress_base.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Report("out.json").size(), 2U);
}

TEST_F(SuppressionTest, OptionsChooseWhatIsSuppressed) {
    const std::pair<Arguments, std::size_t> cases[] = {
        {{}, 3}, // lines 22, 23 and 24
        {{"-a", "GA"}, 1},
        {{"--analyzer=MISRA:1+GA:2"}, 1},
        {{"-v", "501"}, 1},
        {{"--warning=V501", "-v", "2501"}, 2},
        {{"-f", "test.c:22"}, 1},
        {{"-f", "other.c"}, 0},
        {{"--file=test.c", "-v", "V2501"}, 1},
    };
    WriteReport("r.log", {"V501", "V2501", "V05001"});
    for (const auto& [options, count] : cases) {
        std::filesystem::remove(sandbox.Path("base.json"));
        Arguments command = {"suppress", "r.log", "-o", "base.json"};
        command.insert(command.end(), options.begin(), options.end());
        const RunResult result = sandbox.Run(command);
        EXPECT_EQ(result.exitCode, 0) << result;
        EXPECT_EQ(BaseSize("base.json"), count) << result;
    }
}

struct FaultCase {
    Arguments arguments;
    std::string_view output;
};

TEST_F(SuppressionTest, FaultsAreToldAndNothingIsTouched) {
    sandbox.Write("d/x", "");
    sandbox.Write("bad.log", "nonsense\n");
    sandbox.Write("bad.json", "{\"warnings\": [{}]}");
    sandbox.Write("old.json", "{\"warnings\": []}");
    WriteReport("r.log", {"V501"});
    const std::string report = sandbox.Read("r.log");
    const FaultCase cases[] = {
        {{"suppress", "r.log", "-f", ":22", "-o", "d"},
         "Error: Specifying only the line number without file name is not supported for the '--file' argument.\n"},
        {{"suppress", "r.log", "-f", "src/test.c", "-o", "d"},
         "Error: You can only use name of the file in the '--file' argument. Specifying file path is not supported.\n"},
        {{"suppress", "r.log", "-f", "test.c:x"}, "Error: invalid stoul argument\n"},
        {{"suppress", "r.log", "-o", "d", "-a", "XX"}, "Error: d is a directory\n"},
        {{"suppress", "none.log", "-a", "XX"}, "Error: Wrong analyzer name: XX\n"},
        {{"suppress", "none.log", "-a", "GA:x"},
         "Error: Wrong analyzers format: GA:x\n\"x\" at character 4 is no level; write analyzers and levels without "
         "blanks, such as GA:1,2;64:1\n"},
        {{"suppress", "none.log"}, "Error: Couldn't open file none.log\n"},
        {{"suppress", "bad.log"}, "Error: bad.log, line 1: error parsing old format message\n"},
        {{"suppress", "r.log", "-o", "bad.json"}, "Error: bad.json, entry 1: field FileName is not found\n"},
        {{"suppress", "r.log", "-o", "none/base.json"}, "Error: File doesn't exists: none/base.json\n"},
        {{"suppress", "r.log", "-o", "old.json"},
         "Error: The version of your suppress file is outdated. Appending new suppressed messages to it is not "
         "possible. Consider re-generating your suppress file to continue updating it.\n"},
        {{"filter-suppressed", "r.log"}, "Error: Couldn't open file suppress_base.json\n"},
        {{"filter-suppressed", "r.log", "-s", "bad.json"}, "Error: bad.json, entry 1: field FileName is not found\n"},
        {{"filter-suppressed", "bad.log", "-s", "old.json"},
         "Error: bad.log, line 1: error parsing old format message\n"},
        {{"filter-suppressed", "none.log", "-s", "old.json"}, "Error: Couldn't open file none.log\n"},
    };
    for (const FaultCase& row : cases) {
        const RunResult result = sandbox.Run(row.arguments);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_EQ(result.output, row.output);
    }
    const RunResult unwritable = sandbox.Run({"filter-suppressed", "r.log", "-s", "old.json", "-o", "none/out.log"});
    EXPECT_EQ(unwritable.exitCode, 1) << unwritable;
    EXPECT_EQ(unwritable.output.find("Error: Can't write to file: none/out.log"), 0U) << unwritable;
    for (const char* const command : {"suppress", "filter-suppressed"}) {
        const RunResult result = sandbox.Run({command});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_EQ(result.output.find("Option 'Orvanta log' is required\n"), 0U) << result;
    }
    EXPECT_EQ(sandbox.Read("r.log"), report);
    EXPECT_FALSE(sandbox.Exists("suppress_base.json"));
    EXPECT_FALSE(sandbox.Exists("r.log.new"));
    EXPECT_EQ(sandbox.Read("old.json"), "{\"warnings\": []}");
}

TEST_F(SuppressionTest, RunsAtTheSameTimeLoseNoEntry) {
    constexpr std::size_t Runs = 8;
    std::vector<std::unique_ptr<RunningDriver>> runs;
    for (std::size_t run = 0; run < Runs; ++run) {
        const std::string name = "r" + std::to_string(run);
        WriteReport(name, {"V" + std::to_string(501 + run)});
        runs.push_back(std::make_unique<RunningDriver>(Arguments{DriverProgram(), "suppress", name}, sandbox.Path(),
                                                       sandbox.DriverEnvironment()));
    }
    for (const auto& run : runs) {
        const RunResult result = run->Wait();
        EXPECT_EQ(result.exitCode, 0) << result;
    }
    EXPECT_EQ(BaseSize(), Runs);
}

TEST_F(SuppressionTest, AnalyzeReportsOnlyWhatTheBaseDoesNotHold) {
    sandbox.AddUnit("a.c", {"finding V501 1 3 old", "finding V502 2 4 old too"});
    sandbox.AddUnit("b.c", {"finding V501 1 3 other"});
    EXPECT_EQ(sandbox.Analyze({"-o", "report.json"}).exitCode, 0);
    EXPECT_TRUE(sandbox.Run({"suppress", "report.json"}).Says("Suppressed messages: 3\n"));

    sandbox.WriteScript("a.c", {"finding V502 2 44 old too", "finding V501 1 33 old", "finding V503 1 5 new"});
    const RunResult result = sandbox.Analyze({"-o", "report.json", "-s", "suppress_base.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Report(), (std::vector<Finding>{{"V503", 1, sandbox.Path("a.c"), 5, "new"}}));
    EXPECT_TRUE(result.Says("Findings: 1 high, 0 medium, 0 low; 3 more are hidden by the suppress file\n")) << result;
}

TEST_F(SuppressionTest, AnalyzeNeedsABaseThatIsWholeBeforeTheFirstUnit) {
    sandbox.AddUnit("a.c");
    sandbox.Write("bad.json", "{\"warnings\": [");
    for (const char* const base : {"bad.json", "none.json"}) {
        const RunResult result = sandbox.Analyze({"-o", "report.json", "-s", base});
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_TRUE(result.Says("Error: ")) << result;
        EXPECT_TRUE(result.Says(base)) << result;
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
    EXPECT_FALSE(sandbox.Exists("report.json"));
}

TEST_F(SuppressionTest, ReportOfAnOutdatedBaseBeginsWithANotice) {
    sandbox.AddUnit("a.c", {"finding V501 1 3 text"});
    sandbox.Write("old.json", "{\"warnings\": []}");
    const RunResult result = sandbox.Analyze({"-o", "report.json", "-s", "old.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<Finding> findings = Report();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].code, "V014");
    EXPECT_EQ(findings[0].file, " ");
    EXPECT_EQ(findings[1].code, "V501");
    EXPECT_TRUE(result.Says("Findings: 2 high, 0 medium, 0 low; 0 more are hidden")) << result;
    EXPECT_EQ(sandbox.Run({"filter-suppressed", "report.json", "-s", "old.json"}).exitCode, 0);
    EXPECT_EQ(Report(), findings) << "once is enough, however often the report is filtered";
}

TEST_F(SuppressionTest, SourceRootLeavesThePathsOfTheReport) {
    sandbox.AddUnit("src/a.c", {"finding V501 1 3 text"});
    sandbox.AddUnit("b.c", {"finding V501 1 4 text"});
    const std::string relative = "|?|" + std::filesystem::path("/a.c").make_preferred().string();
    EXPECT_EQ(sandbox.Analyze({"-o", "report.json", "-r", "src/"}).exitCode, 0);
    EXPECT_EQ(Report(), (std::vector<Finding>{
                            {"V501", 1, relative, 3, "text"},
                            {"V501", 1, sandbox.Path("b.c"), 4, "text"},
                        }));
    sandbox.Write("my.cfg", "sourcetree-root=src\n");
    EXPECT_EQ(sandbox.Analyze({"-o", "report.json", "-c", "my.cfg"}).exitCode, 0);
    EXPECT_EQ(Report().at(0).file, relative);
}

} // namespace

} // namespace Orvanta
