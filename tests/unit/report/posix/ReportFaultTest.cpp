#include "platform/Environment.h"
#include "platform/Process.h"
#include "report/Exceptions.h"
#include "report/RawLine.h"
#include "report/ReportOutputs.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <random>

namespace OrvlogConverter {
namespace {

using Orvanta::Process;
using Orvanta::TestFolder;

struct Writer {
    Writer(const TestFolder& folder, const Orvanta::Arguments& command)
        : process(command, folder.Path(), Orvanta::OwnEnvironmentBlock(),
                  Orvanta::MakeRedirectToStringProcessor(standardOutput),
                  Orvanta::MakeRedirectToStringProcessor(standardError)) {}

    std::string standardOutput;
    std::string standardError;
    Process process;
};

// The codes in the report, "V1 V2 ..."; fails when the report is not whole.
std::string CodesIn(const std::string& report, bool isJson) {
    std::string codes;
    if (isJson) {
        const auto document = nlohmann::json::parse(report);
        for (const auto& message : document.at("warnings")) {
            codes += message.at("code").get<std::string>() + " ";
        }
        return codes;
    }
    EXPECT_TRUE(report.empty() || report.back() == '\n');
    for (std::size_t begin = 0, end = 0; (end = report.find('\n', begin)) != std::string::npos; begin = end + 1) {
        codes += ReadRawLine(std::string_view(report).substr(begin, end - begin)).code + " ";
    }
    return codes;
}

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

TEST(ReportFault, AKilledRunLeavesAWholeReport) {
    const TestFolder folder;
    std::mt19937 random(1); // the moments of the kills differ from run to run all the same
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
        EXPECT_EQ(writer.process.get_exit_status(), 128 + 9);

        const std::string codes = CodesIn(folder.Read("report"), isJson);
        const auto count = static_cast<std::size_t>(std::count(codes.begin(), codes.end(), ' '));
        EXPECT_EQ(codes, FirstCodes(count)) << "round " << round;
        EXPECT_GE(count, writer.standardError.size() / 3) << "a commit that was told is missing"; // lines of "ok"
    }
}

TEST(ReportFault, AFailedCommitLeavesTheReportAsItWas) {
    const TestFolder folder;
    for (const bool isJson : {true, false}) {
        const std::string form = isJson ? "json" : "raw";
        // 64 blocks of 512 bytes are all that a file may hold.
        Writer writer(folder, {"sh", "-c", R"(trap '' XFSZ; ulimit -f 64; exec "$0" "$@")", REPORT_WRITER, "report",
                               form, "once", "1000", "50000", "900", "40000", "10", "10"});
        EXPECT_EQ(writer.process.get_exit_status(), 0);
        const std::string error = "Can't write to file: report: File too large\n";
        EXPECT_EQ(writer.standardError, "ok\n" + error + "ok\n" + error + "ok\nok\n");
        const std::string report = folder.Read("report");
        EXPECT_EQ(CodesIn(report, isJson), "V1 V3 V5 V6 ");
    }
}

TEST(ReportFault, APipeGetsTheReportAsItComes) {
    const TestFolder folder;
    Writer writer(folder, {REPORT_WRITER, "/dev/stdout", "json", "once", "10", "10"});
    EXPECT_EQ(writer.process.get_exit_status(), 0);
    EXPECT_EQ(CodesIn(writer.standardOutput, true), "V1 V2 ");
    EXPECT_EQ(writer.standardError, "ok\nok\n");
}

TEST(ReportFault, AFullDeviceIsNamed) {
    const std::string error = "Can't write to file: /dev/full: No space left on device";
    try {
        JsonOutput output("/dev/full");
        ADD_FAILURE() << "the head was written";
    } catch (const FilesystemException& exception) {
        EXPECT_EQ(exception.what(), error);
    }
    RawOutput output("/dev/full");
    output.Write({});
    try {
        output.Commit();
        ADD_FAILURE() << "the line was written";
    } catch (const FilesystemException& exception) {
        EXPECT_EQ(exception.what(), error);
    }
}

} // namespace
} // namespace OrvlogConverter
