#include "report/ReportFile.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace OrvlogConverter {
namespace {

namespace fs = std::filesystem;

using Orvanta::TestFolder;

TEST(ReportFileOnPosix, KeepsALinkToTheReportAndItsPermissions) {
    const TestFolder folder;
    fs::permissions(folder.Write("there/report", "earlier"), fs::perms(0600));
    fs::create_symlink("there/report", folder / "link");
    ReportFile report(folder / "link", {"[", ",", "]"});
    report.Append("1");
    report.Commit();
    report.Close();
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Read("there/report"), "[1]");
    EXPECT_EQ(fs::status(folder / "there/report").permissions(), fs::perms(0600));
}

TEST(ReportFileOnPosix, ThatIsALinkToNothingOrHasTwoNamesIsWrittenThere) {
    const TestFolder folder;
    fs::create_symlink("later", folder / "link");
    fs::create_hard_link(folder.Write("report", "an earlier report that is longer"), folder / "name");
    for (const std::string& path : {folder / "link", folder / "name"}) {
        ReportFile report(path, {"[", ",", "]"});
        for (const char* const text : {"1", "2", "3"}) {
            report.Append(text);
            report.Commit();
        }
        report.Close();
    }
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Read("later"), "[1,2,3]");
    EXPECT_EQ(folder.Read("report"), "[1,2,3]");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 4);
}

} // namespace
} // namespace OrvlogConverter
