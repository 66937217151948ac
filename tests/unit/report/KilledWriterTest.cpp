#include "report/ReportOutputs.h"
#include "support/Seed.h"
#include "unit/report/WrittenReport.h"

#include <algorithm>
#include <random>

namespace OrvlogConverter {
namespace {

using Orvanta::TestFolder;

std::string FirstCodes(std::size_t count) {
    std::string codes;
    for (std::size_t number = 1; number <= count; ++number) {
        codes += "V" + std::to_string(number) + " ";
    }
    return codes;
}

// Gives the child a little time of its own that differs from round to round, without a sleep.
void Burn(std::size_t rounds) {
    volatile std::size_t sink = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        sink = sink + round;
    }
}

TEST(KilledWriter, LeavesAWholeReport) {
    const TestFolder folder;
    std::mt19937 random(Orvanta::ChosenSeed());
    for (int round = 0; round < 50; ++round) {
        const bool isJson = round % 2 == 0;
        Writer writer(folder, {REPORT_WRITER, "report", isJson ? "json" : "raw", "endless", "10", "20000", "300"});
        const std::size_t wanted = 3 * (random() % 30);
        int exitCode = 0;
        do {
            writer.process.WaitForChange(Orvanta::PollInterval);
            ASSERT_FALSE(writer.process.try_get_exit_status(exitCode)) << writer.standardError;
        } while (writer.standardError.size() <= wanted);
        Burn(random() % 1000000);
        writer.process.kill(true);
        EXPECT_NE(writer.process.get_exit_status(), 0);

        const std::string codes = CodesIn(folder.Read("report"), isJson);
        const auto count = static_cast<std::size_t>(std::count(codes.begin(), codes.end(), ' '));
        EXPECT_EQ(codes, FirstCodes(count)) << "round " << round;
        const auto told = std::count(writer.standardError.begin(), writer.standardError.end(), '\n');
        EXPECT_GE(count, static_cast<std::size_t>(told)) << "a commit that was told is missing";
    }
}

} // namespace
} // namespace OrvlogConverter
