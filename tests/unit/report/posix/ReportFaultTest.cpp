#include "report/Exceptions.h"
#include "report/ReportOutputs.h"
#include "support/ErrorOf.h"
#include "unit/report/WrittenReport.h"

namespace OrvlogConverter {
namespace {

using Orvanta::TestFolder;

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
    EXPECT_EQ(Orvanta::ErrorOf<FilesystemException>([&] { JsonOutput("/dev/full"); }), error);
    RawOutput output("/dev/full");
    output.Write({});
    EXPECT_EQ(Orvanta::ErrorOf<FilesystemException>([&] { output.Commit(); }), error);
}

} // namespace
} // namespace OrvlogConverter
