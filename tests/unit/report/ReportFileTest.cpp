#include "report/ReportFile.h"

#include "platform/Files.h"
#include "report/Exceptions.h"
#include "report/ReportOutputs.h"
#include "support/ErrorOf.h"
#include "support/Meeting.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <optional>
#include <random>
#include <thread>

namespace OrvlogConverter {
namespace {

using Orvanta::ErrorOf;
using Orvanta::TestFolder;

const ReportFrame Frame = {"[", ",", "]"};

std::vector<std::string> NamesIn(const TestFolder& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(ReportFile, CannotBeMadeEverywhere) {
    const TestFolder folder;
    const std::string missing = folder / "missing/report.json";
    EXPECT_EQ(ErrorOf([] { ReportFile("", Frame); }), "Empty filepath");
    EXPECT_EQ(ErrorOf([&] { ReportFile(missing, Frame); }),
              "Can't write to file: " + missing + ": No such file or directory");
    EXPECT_EQ(ErrorOf([&] { ReportFile(folder.Path(), Frame); }),
              "Can't write to file: " + folder.Path() + ": Is a directory");
    EXPECT_TRUE(NamesIn(folder).empty());
}

TEST(ReportFile, LeavesNothingOfALongerTextThatCouldNotBePublished) {
    const TestFolder folder;
    ReportFile report(folder / "report", Frame);
    report.Append("1");
    report.Commit();
    std::filesystem::rename(folder / "report", folder / "aside");
    report.Append(std::string(1000, 'x'));
    EXPECT_THROW(report.Commit(), FilesystemException);
    std::filesystem::rename(folder / "aside", folder / "report");
    report.Append("2");
    report.Commit();
    EXPECT_EQ(folder.Read("report"), "[1,2]");
}

TEST(ReportFile, ReplacesWhatStandsThereAndLeavesNothingBeside) {
    const TestFolder folder;
    folder.Write("report", "an earlier report that is much longer");
    folder.Write(".report.orvanta-new", "left by a killed run");
    {
        ReportFile report(folder / "report", Frame);
        EXPECT_EQ(folder.Read("report"), "[]");
        report.Append("1");
        report.Commit();
        report.Append("2");
        EXPECT_EQ(folder.Read("report"), "[1]");
    }
    EXPECT_EQ(folder.Read("report"), "[1]");
    EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"report"});
}

// Appends, commits and discards at random, against a text that is built whole each time.
TEST(ReportFile, HoldsExactlyWhatWasCommitted) {
    const TestFolder folder;
    std::mt19937 random(1); // the same steps in every run
    ReportFile report(folder / "report", Frame);
    std::string committed;
    std::string pending;
    for (int step = 0; step < 2000; ++step) {
        switch (random() % 5) {
        case 0:
            report.Discard();
            pending.clear();
            break;
        case 1:
        case 2:
            report.Commit();
            committed += pending;
            pending.clear();
            break;
        default: {
            const std::string text(1 + random() % 50, static_cast<char>('a' + random() % 26));
            report.Append(text);
            pending += (committed.empty() && pending.empty() ? "" : ",") + text;
            break;
        }
        }
        ASSERT_EQ(folder.Read("report"), "[" + committed + "]") << "step " << step;
    }
}

TEST(ReportFile, OutlivesTheLossOfItsSecondCopy) {
    const TestFolder folder;
    ReportFile report(folder / "report", Frame);
    std::string expected = "[";
    for (int number = 0; number < 6; ++number) {
        if (number == 3) {
            std::filesystem::remove(folder / ".report.orvanta-new");
        } else if (number == 5) {
            folder.Write(".report.orvanta-new", "somebody else's");
        }
        report.Append(std::to_string(number));
        report.Commit();
        expected += (number == 0 ? "" : ",") + std::to_string(number);
        EXPECT_EQ(folder.Read("report"), expected + "]");
    }
}

TEST(ReportFile, TellsWhenTheReportHasGone) {
    const TestFolder folder;
    ReportFile report(folder / "report", Frame);
    report.Append("1");
    report.Commit();
    std::filesystem::remove(folder / "report");
    report.Append("2");
    EXPECT_EQ(ErrorOf([&] { report.Commit(); }),
              "Can't write to file: " + (folder / "report") + ": No such file or directory");
    report.Commit(); // nothing is left to commit
}

// Each round one commit runs into one reading of the file: the reader may see the state before or after it.
TEST(ReportFile, IsCompleteForAReaderAtAnyMoment) {
    constexpr std::size_t Rounds = 300;
    const TestFolder folder;
    JsonOutput output(folder / "report.json");
    Orvanta::Meeting round(2);
    std::vector<std::optional<std::size_t>> seen;
    std::jthread reader([&] {
        for (std::size_t number = 0; number < Rounds; ++number) {
            round.Come();
            const auto document = nlohmann::json::parse(Orvanta::ReadWholeFile(folder / "report.json"), nullptr, false);
            seen.push_back(document.is_discarded() ? std::nullopt : std::optional(document["warnings"].size()));
        }
    });
    const ReportMessage message = {"V1", std::string(200, 'x'), "", {}, 0, 1, false};
    for (std::size_t number = 0; number < Rounds; ++number) {
        output.Write(message);
        round.Come();
        EXPECT_NO_THROW(output.Commit());
    }
    reader.join();
    for (std::size_t number = 0; number < Rounds; ++number) {
        EXPECT_TRUE(seen[number] == number || seen[number] == number + 1) << "round " << number;
    }
}

} // namespace
} // namespace OrvlogConverter
