#include "platform/Exceptions.h"
#include "platform/StopFlag.h"
#include "report/JsonMessage.h"
#include "support/TestFolder.h"
#include "suppress/FilterWorker.h"
#include "suppress/SuppressWorker.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvanta {
namespace {

TEST(FilteredReport, ThatIsALinkStaysOne) {
    const TestFolder folder;
    const StopFlag stop;
    std::string finding;
    OrvlogConverter::AppendJsonMessage(
        finding, {"V501", "x", "", {{"/p/a.c", 3, "before", "x", "after", 0, 0, 0}}, 0, 1, false});
    finding += '\n';
    folder.Write("none.log", "");
    SuppressWorker(folder / "base.json", folder / "none.log", {}, stop).Run();
    folder.Write("d/r.log", finding);
    std::filesystem::create_symlink(folder / "d/r.log", folder / "link.log");
    FilterWorker(folder / "base.json", folder / "link.log", std::nullopt, stop).Run();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.log"));
    EXPECT_EQ(folder.Read("d/r.log"), finding);
    FilterWorker(folder / "base.json", folder / "link.log", folder / "d/r.log", stop).Run(); // under another name
    EXPECT_EQ(folder.Read("d/r.log"), finding);
}

TEST(Base, ThatCannotBeLookedAtIsNotReplaced) {
    const TestFolder folder;
    const StopFlag stop;
    const std::string base = folder / "base.json";
    std::filesystem::create_symlink("base.json", base); // leads to itself
    folder.Write("r.log", "");
    try {
        SuppressWorker(base, folder / "r.log", {}, stop).Run();
        ADD_FAILURE() << "the base was written";
    } catch (const FileException& error) {
        EXPECT_EQ(error.what(), base + ": Too many levels of symbolic links");
    }
    EXPECT_TRUE(std::filesystem::is_symlink(base));
}

} // namespace
} // namespace Orvanta
