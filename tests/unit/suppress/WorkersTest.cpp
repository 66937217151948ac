#include "report/Exceptions.h"
#include "report/JsonMessage.h"
#include "report/RawLine.h"
#include "support/ErrorOf.h"
#include "support/Findings.h"
#include "support/TestFolder.h"
#include "suppress/FilterWorker.h"
#include "suppress/SuppressBase.h"
#include "suppress/SuppressWorker.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <thread>

namespace Orvanta {
namespace {

using OrvlogConverter::ReportMessage;
using OrvlogConverter::SuppressBase;

std::string JsonLine(const std::string& text) {
    std::string line;
    OrvlogConverter::AppendJsonMessage(line, OrvlogConverter::FindingSaying(text));
    return line + "\n";
}

std::string RawLine(const std::string& text) {
    std::string line;
    OrvlogConverter::AppendRawLine(line, OrvlogConverter::FindingSaying(text));
    return line + "\n";
}

class Workers : public testing::Test {
protected:
    std::string Suppress(const std::string& base, const std::string& report) {
        testing::internal::CaptureStdout();
        try {
            SuppressWorker(folder / base, folder / report, {}, stop).Run();
        } catch (...) {
            testing::internal::GetCapturedStdout();
            throw;
        }
        return testing::internal::GetCapturedStdout();
    }

    std::string Filter(const std::string& base, const std::string& report,
                       const std::optional<std::string>& output = std::nullopt) {
        const std::optional<std::string> path = output ? std::optional(folder / *output) : std::nullopt;
        testing::internal::CaptureStdout();
        try {
            FilterWorker(folder / base, folder / report, path, stop).Run();
        } catch (...) {
            testing::internal::GetCapturedStdout();
            throw;
        }
        return testing::internal::GetCapturedStdout();
    }

    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const auto& file : std::filesystem::directory_iterator(folder.Path())) {
            names.push_back(file.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    TestFolder folder;
    StopFlag stop;
};

TEST_F(Workers, SuppressThenFilterLeavesNothingAndTwiceAddsNone) {
    folder.Write("r.log", JsonLine("one") + RawLine("two") + JsonLine("one") + "b.c:3:7: error: three\n");
    EXPECT_EQ(Suppress("base.json", "r.log"), "Suppressed messages: 3\nSuppress file: " + (folder / "base.json") +
                                                  "\nLog file: " + (folder / "r.log") + "\n");
    const std::string base = folder.Read("base.json");
    EXPECT_EQ(Suppress("base.json", "r.log").find("Suppressed messages: 0\n"), 0U);
    EXPECT_EQ(folder.Read("base.json"), base);
    EXPECT_EQ(Filter("base.json", "r.log"),
              "Suppress file: " + (folder / "base.json") + "\nTotal messages: 4\nFiltered messages: 0\n");
    EXPECT_EQ(folder.Read("r.log"), "");
    EXPECT_EQ(Names(), (std::vector<std::string>{"base.json", "r.log"}));
}

TEST_F(Workers, LinesThatPassKeepTheirBytes) {
    folder.Write("old.log", JsonLine("old"));
    Suppress("base.json", "old.log");
    const std::string odd = "{ \"level\": 1, \"falseAlarm\": false, \"code\":\"V1\", \"message\":\"\\u00e9\", "
                            "\"positions\":[], \"more\":7 }\r\n";
    const std::string lines = odd + RawLine("new") + "b.c:3:7: error: three\n";
    folder.Write("r.log", odd + JsonLine("old") + "\n" + RawLine("new") + RawLine("old") + "b.c:3:7: error: three");
    EXPECT_TRUE(Filter("base.json", "r.log", "out.log").ends_with("Total messages: 5\nFiltered messages: 3\n"));
    EXPECT_EQ(folder.Read("out.log"), lines);
    Filter("base.json", "r.log");
    EXPECT_EQ(folder.Read("r.log"), lines);
}

TEST_F(Workers, DocumentsKeepTheirOtherMembers) {
    folder.Write("old.log", JsonLine("old"));
    Suppress("base.json", "old.log");
    const std::string extra =
        "{\"falseAlarm\":false,\"level\":1,\"code\":\"V1\",\"message\":\"m\",\"positions\":[],\"x\":[1]}";
    folder.Write("r.json", "{\"version\": 1, \"a\": {\"b\": 2}, \"warnings\": [" + JsonLine("old") + "," + extra +
                               "], \"c\": null}");
    Filter("base.json", "r.json");
    EXPECT_EQ(nlohmann::ordered_json::parse(folder.Read("r.json")),
              nlohmann::ordered_json::parse("{\"version\":1,\"a\":{\"b\":2},\"warnings\":[" + extra + "],\"c\":null}"));
}

TEST_F(Workers, OutputTakesTheFormOfItsNameElseOfTheInput) {
    folder.Write("none.log", "");
    Suppress("base.json", "none.log");
    const std::string json = JsonLine("x");
    folder.Write("r.log", RawLine("x"));
    folder.Write("r.json", "{\"warnings\":[" + json + "]}");
    Filter("base.json", "r.log", "out.json");
    EXPECT_EQ(folder.Read("out.json"), "{\"version\": 1, \"warnings\": [\n" + json + "]}\n");
    Filter("base.json", "r.log", "out.log");
    EXPECT_EQ(folder.Read("out.log"), RawLine("x"));
    Filter("base.json", "r.json", "out.log");
    EXPECT_EQ(folder.Read("out.log"), json);
}

TEST_F(Workers, OutdatedBaseIsToldOfFirstInTheFormOfTheReport) {
    folder.Write("base.json", R"({"warnings":[]})");
    for (const std::string& line : {JsonLine("x"), RawLine("x")}) {
        folder.Write("r.log", line);
        EXPECT_TRUE(Filter("base.json", "r.log").ends_with("Total messages: 1\nFiltered messages: 2\n"));
        const std::string report = folder.Read("r.log");
        EXPECT_TRUE(report.ends_with("\n" + line)) << report;
        EXPECT_EQ(report.front(), line.front());
        EXPECT_LT(report.find("V014"), report.find('\n'));
    }
    EXPECT_THROW(Suppress("base.json", "r.log"), OrvlogConverter::ConfigException);
    EXPECT_EQ(folder.Read("base.json"), R"({"warnings":[]})");
}

TEST_F(Workers, AMarkStaysAtTheStartAndInvalidTextIsNoInvalidJson) {
    const std::string mark = "\xEF\xBB\xBF";
    folder.Write("old.log", JsonLine("old"));
    Suppress("base.json", "old.log");
    folder.Write("r.log", mark + JsonLine("old") + JsonLine("new") + RawLine("\xFF"));
    Filter("base.json", "r.log");
    EXPECT_EQ(folder.Read("r.log"), mark + JsonLine("new") + RawLine("\xFF"));
    folder.Write("outdated.json", R"({"warnings":[]})");
    Filter("outdated.json", "r.log");
    const std::string report = folder.Read("r.log");
    EXPECT_EQ(report.rfind(mark), 0U);
    EXPECT_TRUE(report.ends_with("\n" + JsonLine("new") + RawLine("\xFF"))) << report;
    std::string invalid = JsonLine("new");
    invalid.insert(invalid.find("new"), "\xFF");
    folder.Write("r.log", invalid);
    Filter("base.json", "r.log");
    EXPECT_EQ(folder.Read("r.log"), invalid.replace(invalid.find('\xFF'), 1, "\xEF\xBF\xBD"));
}

TEST_F(Workers, AReportOfTheUsersBesideStays) {
    folder.Write("r.log", JsonLine("x"));
    folder.Write("r.log.new", "mine");
    folder.Write("none.log", "");
    Suppress("base.json", "none.log");
    Filter("base.json", "r.log");
    EXPECT_EQ(folder.Read("r.log.new"), "mine");
}

TEST_F(Workers, ABadLineLeavesEverythingAsItWas) {
    folder.Write("none.log", "");
    Suppress("base.json", "none.log");
    const std::string base = folder.Read("base.json");
    folder.Write("r.log", JsonLine("x") + "nonsense\n");
    folder.Write("out.log", "before");
    const std::vector<std::string> names = Names();
    for (const std::optional<std::string>& output :
         {std::optional<std::string>(), std::optional<std::string>("out.log")}) {
        EXPECT_EQ(ErrorOf<OrvlogConverter::ParseException>([&] { Filter("base.json", "r.log", output); }),
                  (folder / "r.log") + ", line 2: error parsing old format message");
    }
    EXPECT_THROW(Suppress("base.json", "r.log"), OrvlogConverter::ParseException);
    EXPECT_EQ(folder.Read("r.log"), JsonLine("x") + "nonsense\n");
    EXPECT_EQ(folder.Read("out.log"), "before");
    EXPECT_EQ(folder.Read("base.json"), base);
    EXPECT_EQ(Names(), names);
}

TEST_F(Workers, AStopLeavesEverythingAsItWas) {
    folder.Write("none.log", "");
    Suppress("base.json", "none.log");
    folder.Write("r.log", JsonLine("x"));
    const std::vector<std::string> names = Names();
    stop.Set();
    EXPECT_THROW(Filter("base.json", "r.log"), OrvlogConverter::StoppedException);
    EXPECT_THROW(Suppress("base.json", "r.log"), OrvlogConverter::StoppedException);
    EXPECT_EQ(folder.Read("r.log"), JsonLine("x"));
    EXPECT_EQ(Names(), names);
}

TEST_F(Workers, ManyAtOnceLoseNoEntry) {
    constexpr std::size_t Runs = 12;
    for (std::size_t run = 0; run < Runs; ++run) {
        folder.Write(std::string(1, static_cast<char>('a' + run)), JsonLine("text " + std::string(run, 'x')));
    }
    std::vector<std::thread> threads;
    for (std::size_t run = 0; run < Runs; ++run) {
        threads.emplace_back([&, run] {
            SuppressWorker(folder / "base.json", folder / std::string(1, static_cast<char>('a' + run)), {}, stop).Run();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(SuppressBase::Read(folder / "base.json").Size(), Runs);
    EXPECT_EQ(Names().size(), Runs + 1); // no lock file stays
}

} // namespace
} // namespace Orvanta
