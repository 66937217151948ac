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

} // namespace
} // namespace OrvlogConverter
