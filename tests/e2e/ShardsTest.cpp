// Guards against a run spread over machines whose report, counts or exit code are not those of one machine, and against
// parts that are merged though they don't belong together.

#include "e2e/support/InterruptibleRun.h"
#include "e2e/support/SandboxTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <sstream>

namespace Orvanta {

namespace {

class ShardsTest : public SandboxTest {
protected:
    /// Units of all fates, of which many find the same in headers.
    static void AddUnits(Sandbox& project, std::size_t count) {
        for (std::size_t unit = 0; unit < count; ++unit) {
            const std::string number = std::to_string(unit);
            project.AddUnit(
                "u" + number + ".c",
                {"finding-in " + project.Path("src/h" + std::to_string(unit % 3) + ".h") + " V502 2 7 in header",
                 "finding-in " + project.Path("src/all.h") + " V503 1 1 in all of them",
                 "finding V501 " + std::to_string(unit % 3 + 1) + " " + number + "1 own of " + number,
                 "stdout <}tally{>odd flags\t-f" + std::to_string(unit % 2)});
        }
        project.AddEntry({{project.Path("tools/fake-gcc"), "a.o", "-o", "a"}});
        project.AddUnit("third_party/x.c");
        project.AddUnit("src/sys/y.c", {}, {"-isystem", project.Path("src/sys")});
        project.Write("src/z.c", "int z;\n");
        project.AddEntry({{project.Path("tools/fake-gcc"), "-c", project.Path("src/z.c"), project.Path("u1.c")}});
    }

    void AddUnits(std::size_t count) { AddUnits(sandbox, count); }

    static Arguments Joined(Arguments words, const Arguments& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    static std::string PartOf(std::size_t shard) { return "part" + std::to_string(shard) + ".orvpart"; }

    /// Runs all shards, and gives the names of their parts in an order that is not theirs.
    Arguments RunShards(std::size_t count, const Arguments& options, int exitCode = 0) {
        Arguments parts;
        for (std::size_t shard = 1; shard <= count; ++shard) {
            const std::string word = std::to_string(shard) + "/" + std::to_string(count);
            const RunResult result =
                sandbox.Analyze(Joined({"-q", "-j", "2", "--shard", word, "-o", PartOf(shard)}, options));
            EXPECT_TRUE(result.exitCode == 0 || result.exitCode == exitCode) << result;
            parts.insert(shard % 3 == 0 ? parts.begin() : parts.end(), PartOf(shard));
        }
        return parts;
    }

    [[nodiscard]] RunResult Merge(const Arguments& options, const Arguments& parts) const {
        return sandbox.Run(Joined({"merge"}, Joined(options, parts)));
    }

    /// What the end of a run says, but for what it did and how long that took.
    static std::vector<std::string> EndOf(const RunResult& result) {
        std::vector<std::string> lines = result.Lines();
        std::erase_if(lines, [](const std::string& line) {
            return line.starts_with('[') || line.starts_with("Using ") || line.starts_with("Analysis finished") ||
                   line.find(" parts merged in ") != std::string::npos || line.starts_with("Using tracing file");
        });
        return lines;
    }

    /// Runs the whole, and shards that are merged: both must come to the same.
    void ExpectSame(std::size_t count, const std::string& report, const Arguments& options, const Arguments& ends = {},
                    int exitCode = 0) {
        SCOPED_TRACE(std::to_string(count) + " shards, " + report);
        const RunResult whole = sandbox.Analyze(Joined(Joined({"-o", report}, options), ends));
        const std::string expected = sandbox.Read(report);
        const Arguments parts = RunShards(count, options, exitCode == 1 ? 1 : 0);
        sandbox.Write(report, "");
        const RunResult merged = Merge(Joined({"-o", report}, ends), parts);
        EXPECT_EQ(whole.exitCode, exitCode) << whole;
        EXPECT_EQ(merged.exitCode, exitCode) << merged;
        EXPECT_EQ(sandbox.Read(report), expected);
        EXPECT_EQ(EndOf(merged), EndOf(whole));
    }

    /// The lines of a file of --stats without figures, which differ from run to run.
    [[nodiscard]] std::vector<std::string> FatesIn(const char* file) const {
        std::vector<std::string> lines;
        std::istringstream text(sandbox.Read(file));
        for (std::string line; std::getline(text, line);) {
            auto object = nlohmann::json::parse(line);
            for (auto& member : object) {
                member = member.is_object() ? nlohmann::json("ran") : member;
            }
            lines.push_back(object.dump());
        }
        return lines;
    }

    /// The report of one unsharded run.
    [[nodiscard]] std::string WholeReport(const Arguments& options = {}) const {
        static_cast<void>(sandbox.Analyze(Joined({"-q", "-o", "whole.json"}, options)));
        return sandbox.Read("whole.json");
    }
};

TEST_F(ShardsTest, MergedReportsAndEndsAreThoseOfOneRunInEveryForm) {
    AddUnits(20);
    sandbox.Write("raw.cfg", "new-output-format=no\nanalysis-mode=5\noutput-file=elsewhere.json\n");
    const Arguments root = {"-r", "src", "-e", "third_party"};
    ExpectSame(3, "r.json", root);
    ExpectSame(64, "r.jsonl", {"-a", "64;GA"}, {"--fail-on", "GA:1", "--show", "3"}, 2);
    ExpectSame(2, "r.txt", Joined({"-c", "raw.cfg"}, root), {"--show", "100"});
    ExpectSame(3, "raw.json", {"-c", "raw.cfg"});
    EXPECT_FALSE(sandbox.Exists("elsewhere.json"));

    EXPECT_EQ(sandbox.Run({"suppress", "r.json", "-v", "503", "-o", "base.json"}).exitCode, 0);
    EXPECT_EQ(sandbox.Run({"suppress", "r.json", "-v", "501", "-f", "u4.c", "-o", "base.json"}).exitCode, 0);
    ExpectSame(3, "r.json", Joined({"-s", "base.json"}, root));
    EXPECT_TRUE(Merge({"-o", "r.json"}, {PartOf(1), PartOf(2), PartOf(3)}).Says("; 2 more are hidden by"));
    auto base = nlohmann::json::parse(sandbox.Read("base.json"));
    base.erase("version");
    sandbox.Write("old.json", base.dump());
    ExpectSame(5, "r.json", Joined({"-s", "old.json"}, root));
    EXPECT_EQ(Report("r.json").at(0).code, "V014");

    // Findings on standard output, among the messages and alone.
    const std::string report = sandbox.Read("r.json");
    const Arguments parts = {PartOf(5), PartOf(4), PartOf(3), PartOf(2), PartOf(1)};
    EXPECT_EQ(FindingsOfLines(Merge({"-q", "-o", "-"}, parts).output), FindingsOfReport(report));
    EXPECT_EQ(Merge({}, parts).Count("{\"falseAlarm\""), Report("r.json").size());
}

TEST_F(ShardsTest, BelowARootTheSourcesOfShardsMayLieInDifferentPlaces) {
    Sandbox other;
    AddUnits(12);
    AddUnits(other, 12);
    EXPECT_EQ(sandbox.Analyze({"-q", "-o", "all.json", "-r", "."}).exitCode, 0);
    EXPECT_EQ(sandbox.Run({"suppress", "all.json", "-v", "503", "-o", "base.json"}).exitCode, 0);
    other.Write("base.json", sandbox.Read("base.json"));
    const Arguments options = {"-q", "-s", "base.json", "-r", ".", "-e", "*/third_party"};
    EXPECT_EQ(sandbox.Analyze(Joined(options, {"-o", "whole.json"})).exitCode, 0);
    EXPECT_EQ(sandbox.Analyze(Joined(options, {"--shard", "2/2", "-o", "b.orvpart"})).exitCode, 0);
    EXPECT_EQ(other.Analyze(Joined(options, {"--shard", "1/2", "-o", "a.orvpart"})).exitCode, 0);
    const RunResult merged = Merge({"-o", "r.json"}, {"b.orvpart", other.Path("a.orvpart")});
    EXPECT_EQ(merged.exitCode, 0) << merged;
    EXPECT_EQ(sandbox.Read("r.json"), sandbox.Read("whole.json"));
    EXPECT_TRUE(merged.Says("; 1 more are hidden by")) << "one fault in a header of both: " << merged;
}

TEST_F(ShardsTest, FailuresAreToldOnceAndStatisticsAreThoseOfOneRun) {
    AddUnits(8);
    sandbox.AddUnit("bad.c", {"finding V501 1 1 before", "raw-line no finding", "finding V501 1 2 behind"});
    sandbox.AddUnit("bad2.c", {"raw-line no finding"});
    sandbox.AddEntry({{sandbox.Path("tools/fake-gcc"), "-c", "gone.c"}});
    sandbox.AddEntry({{sandbox.Path("tools/none-gcc"), "-c", "u1.c"}});
    ExpectSame(4, "r.json", {}, {}, 1);
    ExpectSame(3, "r.json", {}, {"--fail-on", "all", "--show", "2"}, 1);

    static_cast<void>(sandbox.Analyze({"-q", "-o", "r.json", "--stats", "whole.stats"}));
    const Arguments parts = RunShards(3, {"--stats", "shard.stats"}, 1);
    EXPECT_EQ(Merge({"-o", "r.json", "--stats", "merged.stats"}, parts).exitCode, 1);
    EXPECT_EQ(FatesIn("merged.stats"), FatesIn("whole.stats"));

    // By what they took, as all shards are told alike.
    EXPECT_EQ(Merge({"-o", "m.json"}, RunShards(2, {"--costs", "merged.stats"}, 1)).exitCode, 1);
    EXPECT_EQ(sandbox.Read("m.json"), sandbox.Read("r.json"));
}

TEST_F(ShardsTest, CostsSpreadTheWorkAndTheMachinesOwnHistoryDoesNot) {
    std::string costs;
    std::map<std::string, int> costOf;
    for (int unit = 0; unit < 30; ++unit) {
        const std::string name = "u" + std::to_string(unit) + ".c";
        sandbox.AddUnit(name);
        costOf[sandbox.Path(name)] = unit == 0 ? 900 : 100 + unit;
        nlohmann::ordered_json line = {{"invocation", unit + 1}, {"unit", sandbox.Path(name)}, {"fate", "analyzed"}};
        line["core"] = {{"wallMs", costOf[sandbox.Path(name)]}};
        costs += line.dump() + "\n";
    }
    sandbox.Write("costs", costs);
    std::vector<int> loads;
    std::vector<std::vector<std::string>> sources;
    for (const std::string word : {"1/3", "2/3", "3/3", "1/3"}) {
        sandbox.ForgetCoreCalls();
        const RunResult result = sandbox.Analyze(
            {"--shard", word, "--costs", "costs", "--dump-json", "own.json"}); // a history grows beside it
        EXPECT_EQ(result.exitCode, 0) << result;
        sources.push_back(sandbox.AnalyzedSources());
        EXPECT_EQ(nlohmann::json::parse(sandbox.Read("own.json")).size(), sources.back().size());
        loads.push_back(0);
        for (const std::string& source : sources.back()) {
            loads.back() += costOf[source];
        }
        EXPECT_TRUE(result.Says("Shard " + word + ": " + std::to_string(30 - sources.back().size()) +
                                " of 30 source files are those of other shards\n"))
            << result;
    }
    EXPECT_EQ(sources[3], sources[0]);
    EXPECT_LE(*std::max_element(loads.begin(), loads.end()) * 10, *std::min_element(loads.begin(), loads.end()) * 12);
    EXPECT_TRUE(sandbox.Exists("report.orvpart"));
}

TEST_F(ShardsTest, PartsThatDoNotBelongTogetherAreRefusedByName) {
    AddUnits(6);
    const Arguments parts = RunShards(3, {});
    const std::string database = sandbox.Read("compile_commands.json");
    const auto other = [this](const Arguments& options) {
        EXPECT_EQ(sandbox.Analyze(Joined({"-q", "-o", "other.orvpart"}, options)).exitCode, 0);
    };
    const auto refused = [this](const Arguments& words, const std::string& message) {
        sandbox.Write("m.json", "kept");
        const RunResult result = Merge({"-o", "m.json"}, words);
        EXPECT_EQ(result.exitCode, 1) << result;
        EXPECT_EQ(result.output.substr(0, result.output.find('\n')), "Error: " + message);
        EXPECT_EQ(sandbox.Read("m.json"), "kept");
    };
    const Arguments mixed = {PartOf(1), "other.orvpart"};
    const std::string differ = "These are not parts of one run: part1.orvpart and other.orvpart differ in ";
    other({"--shard", "2/4"});
    refused(mixed, differ + "the shards (1/3 and 2/4)");
    other({"--shard", "2/3", "-a", "64"});
    refused(mixed, differ + "the settings");
    sandbox.Write("base.json", "{\"warnings\": []}");
    other({"--shard", "2/3", "-s", "base.json"});
    refused(mixed, differ + "the suppress file");
    sandbox.SetVariable("FAKE_CORE_VERSION", "9.1");
    other({"--shard", "2/3"});
    refused(mixed, differ + "the core");
    sandbox.SetVariable("FAKE_CORE_VERSION", "");
    sandbox.AddUnit("more.c");
    other({"--shard", "2/3"});
    refused(mixed, differ + "the build description");

    refused({PartOf(1), PartOf(2), PartOf(1), PartOf(3)}, "Shard 1/3 is there twice: part1.orvpart and part1.orvpart");
    refused({PartOf(1), PartOf(3)}, "1 of 3 shards is missing: 2");
    refused({PartOf(1), "none.orvpart"}, "Part doesn't exist: none.orvpart");
    sandbox.Write("other.orvpart", "{\"warnings\": []}");
    refused(mixed, "other.orvpart is no part that analyze --shard has written");
    const std::string part = sandbox.Read(PartOf(2));
    sandbox.Write("other.orvpart", part.substr(0, part.size() - 20));
    refused(mixed, "other.orvpart: it is damaged or cut short");
    for (const Arguments& words : {Arguments{"-o", PartOf(2)}, {"-o", "m.json", "--stats", PartOf(2)}}) {
        EXPECT_EQ(Merge(words, parts).exitCode, 1);
        EXPECT_EQ(sandbox.Read(PartOf(2)), part);
    }
    EXPECT_EQ(Merge({"-o", "m.json"}, {}).exitCode, 1);
}

TEST_F(ShardsTest, UnitsInTwoPartsOrInNoneAreNamed) {
    for (const char* const name : {"a.c", "b.c", "c.c", "d.c"}) {
        sandbox.AddUnit(name);
    }
    const auto costs = [this](const std::vector<int>& milliseconds) {
        std::string text;
        for (std::size_t unit = 0; unit < milliseconds.size(); ++unit) {
            const std::string name(1, static_cast<char>('a' + unit));
            nlohmann::ordered_json line = {{"unit", sandbox.Path(name + ".c")}, {"fate", "analyzed"}};
            line["core"] = {{"wallMs", milliseconds[unit]}};
            text += line.dump() + "\n";
        }
        sandbox.Write("costs", text);
        return Arguments{"-q", "--costs", "costs"};
    };
    // a | b c d, and c d | a b.
    EXPECT_EQ(sandbox.Analyze(Joined(costs({9, 1, 1, 1}), {"--shard", "2/2", "-o", "x.orvpart"})).exitCode, 0);
    EXPECT_EQ(sandbox.Analyze(Joined(costs({4, 5, 9, 1}), {"--shard", "1/2", "-o", "z.orvpart"})).exitCode, 0);
    const RunResult result = Merge({"-o", "m.json", "--allow-missing"}, {"x.orvpart", "z.orvpart"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_EQ(result.output,
              "Error: The parts were not cut alike: have all shards been given the same file of --costs?\n"
              "  in no part: number 1 of the input\n"
              "  in z.orvpart and x.orvpart: " +
                  sandbox.Path("c.c") + "\n  in z.orvpart and x.orvpart: " + sandbox.Path("d.c") + "\n");
    EXPECT_FALSE(sandbox.Exists("m.json"));
}

TEST_F(ShardsTest, WhatIsMissingIsToldAndWrittenOnlyWhenAllowed) {
    sandbox.AddUnit("a.c", {"finding V501 1 1 a"});
    sandbox.AddUnit("b.c", {"finding V501 1 1 b"});
    sandbox.AddUnit("c.c", {"finding V501 1 1 unfinished", "hang"});
    // A run that is stopped leaves what it has finished, and says what it has not.
    {
        InterruptibleRun run(sandbox, {"-j", "1", "--shard", "1/1", "-o", "one.orvpart"});
        ASSERT_TRUE(HoldsSoon([this] { return sandbox.Exists("records/core-of-c.c.hangs"); }));
        run.Interrupt();
        EXPECT_EQ(run.Wait().exitCode, 130);
    }
    RunResult result = Merge({"-o", "m.json"}, {"one.orvpart"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("Error: Shard 1 was stopped: 1 of its 3 source files were not analyzed\n")) << result;
    EXPECT_FALSE(sandbox.Exists("m.json"));
    result = Merge({"-o", "m.json", "--allow-missing"}, {"one.orvpart"});
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("(2 analyzed, 0 failed, 0 skipped, 0 excluded, 1 stopped)")) << result;
    EXPECT_EQ(MessagesOf(Report("m.json")), (std::vector<std::string>{"a", "b"}));

    sandbox.WriteScript("c.c", {"finding V501 1 1 c"});
    EXPECT_EQ(sandbox.Analyze({"-q", "--shard", "1/1", "-o", "one.orvpart", "--resume"}).exitCode, 0);
    EXPECT_EQ(Merge({"-o", "m.json"}, {"one.orvpart"}).exitCode, 0);
    EXPECT_EQ(sandbox.Read("m.json"), WholeReport());

    // More shards than units: some have none, and their parts count all the same.
    Arguments parts = RunShards(9, {});
    EXPECT_EQ(Merge({"-o", "m.json"}, parts).exitCode, 0);
    EXPECT_EQ(sandbox.Read("m.json"), WholeReport());
    parts.erase(std::remove(parts.begin(), parts.end(), PartOf(4)), parts.end());
    parts.erase(std::remove(parts.begin(), parts.end(), PartOf(7)), parts.end());
    EXPECT_TRUE(Merge({"-o", "m.json"}, parts).Says("Error: 2 of 9 shards are missing: 4, 7\n"));
    // What is missing is no clean part of a report, whatever it would have held.
    EXPECT_EQ(Merge({"-o", "m.json", "--allow-missing"}, parts).exitCode, 1);
}

TEST_F(ShardsTest, OptionsThatAShardCanNotFollowAreRefusedBeforeAnyWork) {
    sandbox.AddUnit("a.c");
    sandbox.Write("costs", "{\"unit\":\"a.c\"}\n");
    sandbox.Write("list", "a.c\n");
    const std::pair<Arguments, std::string> cases[] = {
        {{"--costs", "costs"}, "--costs needs --shard"},
        {{"--shard", "0/2"}, "Wrong value of --shard: \"0/2\", expected K/N with K from 1 to N and N up to 100000"},
        {{"--shard", "1/2", "-o", "r.json"},
         "Wrong value of --output-file: \"r.json\", a shard writes a part, whose name ends in .orvpart"},
        {{"--shard", "1/2", "-o", "-"},
         "Wrong value of --output-file: \"-\", a shard writes a part, whose name ends in .orvpart"},
        {{"--shard", "1/2", "-i"}, "Flags --shard and --incremental cannot be used together"},
        {{"--shard", "1/2", "-S", "list"}, "Flags --shard and --source-files cannot be used together"},
        {{"--shard", "1/2", "--intermodular"}, "Flags --shard and --intermodular cannot be used together"},
        {{"--shard", "1/2", "--fail-on", "all"}, "Flags --shard and --fail-on cannot be used together"},
        {{"--shard", "1/2", "--regenerate-depend-info", "run-analysis"},
         "Flags --shard and --regenerate-depend-info cannot be used together"},
        {{"--shard", "1/2", "--stats", "report.orvpart"},
         "Flags --output-file and --stats name one file: report.orvpart"},
        {{"--shard", "1/2", "--costs", "none"}, "File of costs doesn't exist: none"},
        {{"--shard", "1/2", "--costs", "costs"},
         "costs, line 1: expected an object as --stats writes it, with \"unit\" and \"fate\""},
    };
    for (const auto& [options, message] : cases) {
        const RunResult result = sandbox.Analyze(options);
        EXPECT_EQ(result.exitCode, 1) << result;
        // With "-" standard output is for what is written there.
        EXPECT_EQ((result.output + result.errors).substr(0, ("Error: " + message).size()), "Error: " + message);
    }
    EXPECT_TRUE(sandbox.CoreCalls().empty());
    EXPECT_FALSE(sandbox.Exists("report.orvpart"));
}

} // namespace

} // namespace Orvanta
