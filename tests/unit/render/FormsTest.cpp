// Each form gets the same findings, among them texts that would break out of their place.

#include "render/Forms.h"

#include "render/RenderTypes.h"
#include "report/CompilerLine.h"
#include "report/DocumentationLink.h"
#include "report/Exceptions.h"
#include "report/ReportMessage.h"
#include "support/TestFolder.h"
#include "suppress/LineHash.h"
#include "suppress/SuppressBase.h"
#include "unit/report/RandomMessages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

namespace OrvlogConverter {
namespace {

using Json = nlohmann::json;
using Orvanta::TestFolder;

ReportMessage Finding(std::string code, std::string text, const std::string& file, std::uint32_t line,
                      std::uint32_t level) {
    ReportMessage message;
    message.code = std::move(code);
    message.message = std::move(text);
    message.positions.push_back({file, line, "before", "x = 1;", "after", 0, 0, 0});
    message.level = level;
    return message;
}

std::vector<ReportMessage> Findings() {
    std::vector<ReportMessage> all = {
        Finding("V501", "a < \"b\" & 'c'", "|?|/src/a b.c", 3, 1),
        Finding("External", "[zerodiv] Division by zero.", "/usr/x.h", 9, 2),
        Finding("V2567", "two\nlines\x1B[31m \xE2\x80\xAE ]]> ::x:: 100% |'[]\xFF", "C:\\p\\s.c", 5, 3),
        Finding("V501", "a < \"b\" & 'c'", "|?|/src/a b.c", 30, 1),
        Finding("V008", "Unable to start the analysis on this file.", "/p/gone.c", 1, 1),
        Finding("V9000", "=odd", " ", 0, 0),
    };
    all[0].cwe = all[3].cwe = 570;
    all[1].positions.push_back({"|?|/src/a.c", 4, "", "", "", 0, 0, 0});
    all[2].sastId = "MISRA-C-8.13";
    return all;
}

RenderSettings Settings() {
    RenderSettings settings;
    settings.sourceRoot = "/p";
    settings.namesSourceRoot = true;
    settings.programVersion = "1.2";
    return settings;
}

std::string Render(const std::string& type, const std::vector<ReportMessage>& messages,
                   const RenderSettings& settings = Settings()) {
    const TestFolder folder;
    const std::unique_ptr<IOutput> output = RenderTypeNamed(type).make(folder / "out", settings);
    output->Begin();
    for (const ReportMessage& message : messages) {
        output->Write(message);
    }
    output->End();
    return folder.Read("out");
}

Json RenderJson(const std::string& type, const std::vector<ReportMessage>& messages,
                const RenderSettings& settings = Settings()) {
    return Json::parse(Render(type, messages, settings));
}

TEST(TextForm, IsOneLineForEachFindingAsCompilersWriteThem) {
    EXPECT_EQ(Render("text", Findings()),
              "|?|/src/a b.c:3:1: error: a < \"b\" & 'c' [V501]\n"
              "/usr/x.h:9:1: warning: Division by zero. [zerodiv]\n"
              "C:\\p\\s.c:5:1: note: two lines\\x1B[31m \\u202E ]]> ::x:: 100% |'[]\xEF\xBF\xBD [V2567]\n"
              "|?|/src/a b.c:30:1: error: a < \"b\" & 'c' [V501]\n"
              "/p/gone.c:1:1: error: Unable to start the analysis on this file. [V008]\n"
              "(no file):1:1: note: =odd [V9000]\n");
}

TEST(TextForm, IsReadBackWhateverItHolds) {
    RandomMessages random(3);
    std::vector<ReportMessage> messages;
    for (int count = 0; count < 200; ++count) {
        messages.push_back(random.Message());
        messages.back().message = "m" + random.AnyText();
    }
    std::istringstream lines(Render("text", messages));
    std::string line;
    for (const ReportMessage& message : messages) {
        ASSERT_TRUE(std::getline(lines, line));
        const std::optional<ReportMessage> read = ReadCompilerLine(line);
        ASSERT_TRUE(read) << line;
        EXPECT_TRUE(read->message.ends_with(" [" + message.code + "]")) << line;
        EXPECT_EQ(read->level, message.level == 0 ? 3U : message.level);
    }
    EXPECT_FALSE(std::getline(lines, line));
}

TEST(CsvForm, QuotesTextsAndDisarmsFormulas) {
    const std::vector<ReportMessage> all = Findings();
    EXPECT_EQ(Render("csv", {all[0], all[1], all[5]}),
              "level,rule,code,cwe,standard,text,file,line,false alarm,source line,further places\r\n"
              "high,\"V501\",\"V501\",570,\"\",\"a < \"\"b\"\" & 'c'\",\"|?|/src/a b.c\",3,false,\"x = 1;\",\"\"\r\n"
              "medium,\"zerodiv\",\"External\",,\"\",\"Division by zero.\",\"/usr/x.h\",9,false,\"x = 1;\","
              "\"|?|/src/a.c:4\"\r\n"
              "none,\"V9000\",\"V9000\",,\"\",\"'=odd\",\"(no file)\",1,false,\"x = 1;\",\"\"\r\n");
}

TEST(TotalsForm, CountsByGroupAndByRule) {
    EXPECT_EQ(Render("totals", Findings()), "Group                High   Medium      Low     None    Total\n"
                                            "Failures                1        0        0        0        1\n"
                                            "General analysis        2        1        0        0        3\n"
                                            "MISRA                   0        0        1        0        1\n"
                                            "Other                   0        0        0        1        1\n"
                                            "Total                   3        1        1        1        6\n"
                                            "\n"
                                            "Rule        High   Medium      Low     None    Total\n"
                                            "V501           2        0        0        0        2\n"
                                            "V008           1        0        0        0        1\n"
                                            "V2567          0        0        1        0        1\n"
                                            "V9000          0        0        0        1        1\n"
                                            "zerodiv        0        1        0        0        1\n"
                                            "Total          3        1        1        1        6\n");
}

TEST(GithubForm, KeepsTextsFromBecomingCommands) {
    EXPECT_EQ(Render("github", Findings()),
              "::error file=src/a b.c,line=3,title=V501::a < \"b\" & 'c'\n"
              "::warning file=/usr/x.h,line=9,title=zerodiv::Division by zero.\n"
              "::notice file=C%3A/p/s.c,line=5,title=V2567::two%0Alines\\x1B[31m \\u202E ]]> ::x:: 100%25 |'[]"
              "\xEF\xBF\xBD\n"
              "::error file=src/a b.c,line=30,title=V501::a < \"b\" & 'c'\n"
              "::error file=gone.c,line=1,title=V008::Unable to start the analysis on this file.\n"
              "::notice title=V9000::=odd\n");
}

TEST(TeamcityForm, DeclaresEachRuleOnceAndEscapesItsOwnSigns) {
    const std::vector<ReportMessage> all = Findings();
    EXPECT_EQ(Render("teamcity", {all[2], all[2]}),
              "##teamcity[inspectionType id='V2567' name='V2567' "
              "description='https://docs.orvanta.example/en/docs/warnings/v2567/' category='MISRA']\n"
              "##teamcity[inspection typeId='V2567' message='two|nlines\\x1B|[31m \\u202E |]|]> ::x:: 100% |||'|[|]"
              "\xEF\xBF\xBD' file='C:/p/s.c' line='5' SEVERITY='WEAK WARNING']\n"
              "##teamcity[inspection typeId='V2567' message='two|nlines\\x1B|[31m \\u202E |]|]> ::x:: 100% |||'|[|]"
              "\xEF\xBF\xBD' file='C:/p/s.c' line='5' SEVERITY='WEAK WARNING']\n");
}

TEST(JunitForm, HasASuiteForEachFileAndATestForEachFinding) {
    std::vector<ReportMessage> all = Findings();
    all = {all[0], all[3], all[2]};
    EXPECT_EQ(Render("junit", all),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<testsuites name=\"orvanta-analyzer\">\n"
              "<testsuite name=\"src/a b.c\" tests=\"2\" failures=\"2\" errors=\"0\">\n"
              "<testcase classname=\"src/a b.c\" name=\"V501 at line 3\" file=\"src/a b.c\" line=\"3\"><failure "
              "type=\"high\" message=\"a &lt; &quot;b&quot; &amp; &#39;c&#39;\">src/a b.c:3: x = 1;</failure>"
              "</testcase>\n"
              "<testcase classname=\"src/a b.c\" name=\"V501 at line 30\" file=\"src/a b.c\" line=\"30\"><failure "
              "type=\"high\" message=\"a &lt; &quot;b&quot; &amp; &#39;c&#39;\">src/a b.c:30: x = 1;</failure>"
              "</testcase>\n"
              "</testsuite>\n"
              "<testsuite name=\"C:/p/s.c\" tests=\"1\" failures=\"1\" errors=\"0\">\n"
              "<testcase classname=\"C:/p/s.c\" name=\"V2567 at line 5\" file=\"C:/p/s.c\" line=\"5\"><failure "
              "type=\"low\" message=\"two&#10;lines\\x1B[31m \\u202E ]]&gt; ::x:: 100% |&#39;[]\xEF\xBF\xBD\">"
              "C:/p/s.c:5: x = 1;</failure></testcase>\n"
              "</testsuite>\n"
              "</testsuites>\n");
    EXPECT_NE(Render("junit", {}).find("name=\"no findings\"/>"), std::string::npos);
}

TEST(GitlabForm, GivesEachFindingANameOfItsOwnThatOutlivesMovedLines) {
    std::vector<ReportMessage> all = Findings();
    const Json report = RenderJson("gitlab", all);
    EXPECT_EQ(report[2].dump(), "{\"check_name\":\"V2567\",\"description\":\"two\\nlines\\\\x1B[31m \\\\u202E ]]> "
                                "::x:: 100% |'[]\xEF\xBF\xBD\",\"fingerprint\":\"" +
                                    report[2].at("fingerprint").get<std::string>() +
                                    "\",\"location\":{\"lines\":{\"begin\":5},\"path\":\"C:/p/s.c\"},\"severity\":"
                                    "\"minor\"}");
    std::set<std::string> names;
    for (const Json& issue : report) {
        names.insert(issue.at("fingerprint"));
    }
    EXPECT_EQ(names.size(), all.size());
    all.front().positions.front().line = 7;
    EXPECT_EQ(RenderJson("gitlab", all)[0].at("fingerprint"), report[0].at("fingerprint"));
    EXPECT_EQ(Render("gitlab", {}), "[\n]\n");
}

TEST(SonarqubeForm, NamesItsRulesWithTheWorstOfTheirLevels) {
    std::vector<ReportMessage> all = Findings();
    all[0].level = 3;
    const Json report = RenderJson("sonarqube", all);
    EXPECT_EQ(report.at("issues").size(), all.size());
    EXPECT_EQ(report.at("issues")[1].dump(),
              "{\"primaryLocation\":{\"filePath\":\"/usr/x.h\",\"message\":\"Division by zero.\",\"textRange\":"
              "{\"startLine\":9}},\"ruleId\":\"zerodiv\",\"secondaryLocations\":[{\"filePath\":\"src/a.c\","
              "\"textRange\":{\"startLine\":4}}]}");
    std::string rules;
    for (const Json& rule : report.at("rules")) {
        rules += rule.at("id").get<std::string>() + ":" + rule.at("impacts")[0].at("severity").get<std::string>() + " ";
    }
    EXPECT_EQ(rules, "V008:HIGH V2567:LOW V501:HIGH V9000:LOW zerodiv:MEDIUM ");
}

TEST(SarifForm, TellsPlacesRulesWeaknessesAndFailures) {
    const Json report = RenderJson("sarif", Findings());
    const Json& run = report.at("runs")[0];
    const Json& results = run.at("results");
    ASSERT_EQ(results.size(), 5U); // a failed unit is a notification
    const Json& place = results[0].at("locations")[0].at("physicalLocation");
    EXPECT_EQ(place.at("artifactLocation").dump(), R"({"uri":"src/a%20b.c","uriBaseId":"SRCROOT"})");
    EXPECT_EQ(place.at("region").dump(), R"({"snippet":{"text":"x = 1;"},"startLine":3})");
    EXPECT_EQ(place.at("contextRegion").dump(),
              R"({"endLine":4,"snippet":{"text":"before\nx = 1;\nafter"},"startLine":2})");
    const Json& other = results[1];
    EXPECT_EQ(other.at("locations")[0].at("physicalLocation").at("artifactLocation").dump(),
              R"({"uri":"file:///usr/x.h"})");
    EXPECT_EQ(other.at("relatedLocations")[0].at("physicalLocation").at("artifactLocation").at("uri"), "src/a.c");
    EXPECT_EQ(results[2].at("locations")[0].at("physicalLocation").at("artifactLocation").at("uri"),
              "file:///C:/p/s.c");
    EXPECT_EQ(results[4].at("locations").size(), 0U);
    const Json& rule = run.at("tool").at("driver").at("rules")[0];
    EXPECT_EQ(rule.at("id"), "V501");
    EXPECT_EQ(rule.at("helpUri"), "https://docs.orvanta.example/en/docs/warnings/v501/");
    EXPECT_EQ(rule.at("relationships")[0].at("target").at("id"), "570");
    EXPECT_EQ(run.at("taxonomies")[0].at("taxa")[0].at("id"), "570");
    EXPECT_TRUE(run.at("originalUriBaseIds").at("SRCROOT").at("uri").get<std::string>().ends_with("/p/"));
    EXPECT_EQ(run.at("invocations")[0].at("executionSuccessful"), false);
    EXPECT_EQ(run.at("invocations")[0].at("toolExecutionNotifications")[0].at("locations").size(), 1U);
    for (const Json& result : results) {
        EXPECT_EQ(run.at("tool").at("driver").at("rules")[result.at("ruleIndex").get<std::size_t>()].at("id"),
                  result.at("ruleId"));
        EXPECT_FALSE(result.contains("suppressions"));
    }
}

TEST(SarifForm, NamesFindingsAsABaseWouldAndCountsEqualOnes) {
    std::vector<ReportMessage> all = Findings();
    const auto names = [](const std::vector<ReportMessage>& messages) {
        std::vector<std::string> list;
        const Json report = RenderJson("sarif", messages);
        for (const Json& result : report.at("runs")[0].at("results")) {
            list.push_back(result.at("partialFingerprints").at("primaryLocationLineHash"));
        }
        return list;
    };
    const std::vector<std::string> before = names(all);
    EXPECT_TRUE(before[0].ends_with(":1"));
    EXPECT_EQ(before[3], before[0].substr(0, before[0].size() - 1) + "2");
    all[0].positions[0].line = 100;
    all[3].positions[0].line = 200;
    EXPECT_EQ(names(all), before);
    all[0].positions[0].currLine = "x = 2;";
    EXPECT_NE(names(all)[0], before[0]);
}

TEST(SarifForm, MarksSuppressedFindingsAndTellsItsLimits) {
    std::vector<ReportMessage> all = Findings();
    all[1].falseAlarm = true;
    SuppressBase base;
    base.Add(MakeSuppressEntry(all[0], CurrentBaseVersion));
    RenderSettings settings = Settings();
    settings.suppressed = &base;
    std::string told;
    settings.tell = [&told](std::string_view line) {
        told += line;
    };
    const Json results = RenderJson("sarif", all, settings).at("runs")[0].at("results");
    EXPECT_EQ(results[0].at("suppressions").dump(), R"([{"kind":"external","status":"accepted"}])");
    EXPECT_EQ(results[1].at("suppressions").dump(), R"([{"kind":"inSource"}])");
    EXPECT_EQ(results[2].at("suppressions").dump(), "[]");
    EXPECT_EQ(told, "");
    Render("sarif", std::vector<ReportMessage>(5001, all[0]), settings);
    EXPECT_EQ(told, "The SARIF report holds 5001 results: some platforms show only the 5000 worst of a run");
}

TEST(EveryForm, StaysWholeWhateverItsTextsHoldAndLeavesOutWhatIsNoFinding) {
    RandomMessages random(11);
    std::vector<ReportMessage> messages = {DocumentationLinkMessage()};
    for (int count = 0; count < 300; ++count) {
        ReportMessage message = random.Message();
        message.message = random.AnyText();
        message.positions.front().currLine = random.AnyText();
        message.sastId = random.AnyText();
        messages.push_back(message);
    }
    for (const RenderType& type : AllRenderTypes()) {
        if (type.name == "raw" || type.name == "json" || type.name == "misra") {
            continue;
        }
        const std::string text = Render(std::string(type.name), messages);
        EXPECT_EQ(text.find("Help:"), std::string::npos) << type.name;
        EXPECT_EQ(text.find('\x1B'), std::string::npos) << type.name;
        EXPECT_EQ(text.find('\x01'), std::string::npos) << type.name;
        EXPECT_NO_THROW(static_cast<void>(Json(text).dump())) << type.name << " is no UTF-8";
        if (type.name == "sarif" || type.name == "gitlab" || type.name == "sonarqube") {
            EXPECT_TRUE(Json::accept(text)) << type.name;
        }
        if (type.name == "github") {
            EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 300);
        }
    }
}

TEST(RenderTypes, AreKnownByTheirNames) {
    try {
        static_cast<void>(RenderTypeNamed("pdf"));
        ADD_FAILURE();
    } catch (const ConfigException& error) {
        EXPECT_EQ(std::string(error.what()).find("Wrong render type: \"pdf\", expected one of json, raw, misra, "), 0U);
    }
}

} // namespace
} // namespace OrvlogConverter
