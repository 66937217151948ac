#include "analysis/ReportCommitter.h"

#include "report/Exceptions.h"
#include "report/MessageLine.h"
#include "support/Findings.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <thread>
#include <vector>

namespace Orvanta {
namespace {

using OrvlogConverter::FindingSaying;
using OrvlogConverter::LineFormat;
using OrvlogConverter::ReportMessage;

std::string LineOf(const ReportMessage& message) {
    std::string line;
    AppendMessageLine(line, message, LineFormat::Json);
    return line + "\n";
}

/// Keeps what is committed; fails on demand.
class MemoryOutput : public OrvlogConverter::ReportOutput {
public:
    bool Write(const ReportMessage& message) override {
        pending.push_back(message.message);
        return true;
    }

    void Commit() override {
        if (failNext) {
            failNext = false;
            pending.clear();
            throw OrvlogConverter::FilesystemException("no space");
        }
        committed.insert(committed.end(), pending.begin(), pending.end());
        pending.clear();
    }

    std::vector<std::string> pending;
    std::vector<std::string> committed;
    bool failNext = false;
};

TEST(ReportCommitter, KeepsInputOrderWhateverOrderUnitsEndIn) {
    constexpr std::size_t Units = 60;
    const TestFolder folder;
    std::vector<std::string> expected;
    std::vector<std::size_t> order;
    std::vector<UnitResult> results(Units);
    for (std::size_t unit = 0; unit < Units; ++unit) {
        const std::string name = std::to_string(unit);
        results[unit].fragmentPath =
            folder.Write(name, LineOf(FindingSaying(name + " one")) + LineOf(FindingSaying(name + " two")));
        expected.insert(expected.end(), {name + " one", name + " two"});
        order.push_back(unit);
    }
    std::shuffle(order.begin(), order.end(), std::mt19937(7)); // the same order at every run

    MemoryOutput output;
    ReportCommitter committer(Units, output);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t i = thread; i < Units; i += 4) {
                committer.Commit(order[i], results[order[i]]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(output.committed, expected);
    EXPECT_EQ(committer.Outcome().findingsByLevel[1], 2 * Units);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path())) << "fragments are left";
}

TEST(ReportCommitter, CommitsAUnitAsSoonAsItsTurnHasCome) {
    const TestFolder folder;
    MemoryOutput output;
    ReportCommitter committer(3, output);
    committer.Commit(1, {.ownFindings = {FindingSaying("second")}});
    EXPECT_TRUE(output.committed.empty());
    committer.Commit(0, {.status = AnalyzerStatus::Excluded});
    EXPECT_EQ(output.committed, std::vector<std::string>{"second"});
}

TEST(ReportCommitter, FetchesWhatIsCarriedOverWhenItsTurnHasCome) {
    MemoryOutput output;
    std::vector<std::size_t> fetched;
    ReportCommitter committer(5, output, [&fetched](std::size_t unit) {
        fetched.push_back(unit);
        return unit == 4 ? throw OrvlogConverter::FilesystemException("gone")
                         : LineOf(FindingSaying("carried " + std::to_string(unit)));
    });
    const UnitResult carried = {.status = AnalyzerStatus::CarriedOver};
    committer.Commit(1, carried);
    EXPECT_TRUE(fetched.empty()) << "it would wait in memory";
    committer.Commit(0, carried);
    committer.Flush(); // before a unit is started
    EXPECT_EQ(output.committed, (std::vector<std::string>{"carried 0", "carried 1"}));
    committer.Commit(3, carried);
    output.failNext = true;
    committer.Commit(2, carried);
    committer.Flush();
    committer.Commit(4, carried);
    EXPECT_EQ(fetched, (std::vector<std::size_t>{0, 1, 2, 3, 4}));
    EXPECT_EQ(committer.Outcome().findingsByLevel[1], 2U);
    EXPECT_EQ(committer.Outcome().failures,
              (std::map<std::size_t, std::string>{
                  {2, "no space"}, {3, "no space"}, {4, "The core's findings can't be read: gone"}}));
}

TEST(ReportCommitter, ReportsAFindingOfManyUnitsOnce) {
    const TestFolder folder;
    MemoryOutput output;
    ReportCommitter committer(2, output);
    committer.Commit(0, {.fragmentPath = folder.Write("0", LineOf(FindingSaying("in a header")))});
    committer.Commit(
        1, {.fragmentPath = folder.Write("1", LineOf(FindingSaying("in a header")) + LineOf(FindingSaying("own", 2)))});
    EXPECT_EQ(output.committed, (std::vector<std::string>{"in a header", "own"}));
    EXPECT_EQ(committer.Outcome().findingsByLevel, (std::array<std::size_t, 4>{0, 1, 1, 0}));
}

TEST(ReportCommitter, FailsAUnitWithAnUnreadableFindingButKeepsTheOthers) {
    const TestFolder folder;
    MemoryOutput output;
    ReportCommitter committer(2, output);
    committer.Commit(0, {.fragmentPath = folder.Write("0", LineOf(FindingSaying("good")) + "rubbish\n" +
                                                               LineOf(FindingSaying("too")))});
    committer.Commit(1, {.status = AnalyzerStatus::CoreFailed,
                         .reason = "exit 3",
                         .fragmentPath = folder.Write("1", LineOf(FindingSaying("whole")) + "{\"half")});
    EXPECT_EQ(output.committed, (std::vector<std::string>{"good", "too", "whole"}));
    const RunOutcome& outcome = committer.Outcome();
    EXPECT_EQ(outcome.statuses, (std::vector<AnalyzerStatus>{AnalyzerStatus::Failed, AnalyzerStatus::CoreFailed}));
    EXPECT_EQ(outcome.failures.at(0), "Line 2 of the core's findings can't be read: error parsing old format message");
    EXPECT_EQ(outcome.failures.at(1), "exit 3");
}

TEST(ReportCommitter, FailsAUnitWhoseFindingsCannotBeReadAtAll) {
    const TestFolder folder;
    MemoryOutput output;
    ReportCommitter committer(2, output);
    const std::string unreadable = folder.MakeFolder("0");
    committer.Commit(0, {.fragmentPath = unreadable});
    committer.Commit(1, {.fragmentPath = folder / "none"}); // a core that finds nothing may make no file
    EXPECT_EQ(committer.Outcome().statuses,
              (std::vector<AnalyzerStatus>{AnalyzerStatus::Failed, AnalyzerStatus::Analyzed}));
    EXPECT_THAT(committer.Outcome().failures.at(0),
                testing::StartsWith("The core's findings can't be read: " + unreadable + ": "));
}

TEST(ReportCommitter, FailsOnlyTheUnitWhoseFindingsTheReportCouldNotTake) {
    MemoryOutput output;
    ReportCommitter committer(3, output);
    committer.Commit(0, {.ownFindings = {FindingSaying("first")}});
    output.failNext = true;
    committer.Commit(1, {.ownFindings = {FindingSaying("lost")}});
    committer.Commit(2, {.ownFindings = {FindingSaying("third")}});
    EXPECT_EQ(output.committed, (std::vector<std::string>{"first", "third"}));
    EXPECT_EQ(committer.Outcome().failures, (std::map<std::size_t, std::string>{{1, "no space"}}));
    EXPECT_EQ(committer.Outcome().findingsByLevel[1], 2U);
}

TEST(ReportCommitter, DropsWhatAStoppedUnitLeft) {
    const TestFolder folder;
    MemoryOutput output;
    ReportCommitter committer(1, output);
    committer.Commit(
        0, {.status = AnalyzerStatus::Stopped, .fragmentPath = folder.Write("0", LineOf(FindingSaying("half")))});
    EXPECT_TRUE(output.committed.empty());
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

} // namespace
} // namespace Orvanta
