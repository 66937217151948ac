#include "platform/Exceptions.h"
#include "platform/StopFlag.h"
#include "report/JsonMessage.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"
#include "suppress/FilterWorker.h"
#include "suppress/SuppressBase.h"
#include "suppress/SuppressWorker.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

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
    EXPECT_EQ(ErrorOf<FileException>([&] { SuppressWorker(base, folder / "r.log", {}, stop).Run(); }),
              base + ": Too many levels of symbolic links");
    EXPECT_TRUE(std::filesystem::is_symlink(base));
}

TEST(Base, LosesNoEntryOfRunsThatKnowItByAnotherName) {
    const TestFolder folder;
    const StopFlag stop;
    const std::string path = folder.Write("a/base.json", R"({"version": 2, "warnings": []})");
    folder.MakeFolder("b");
    std::filesystem::create_hard_link(path, folder / "b/base.json");
    std::filesystem::create_symlink("a/base.json", folder / "link.json");
    constexpr std::size_t Runs = 12;
    std::vector<std::thread> runs;
    for (std::size_t run = 0; run < Runs; ++run) {
        const std::string report = std::to_string(run) + ".log";
        folder.Write(report, "a" + std::to_string(run) + ".c:1:1: error: x\n");
        const char* const names[] = {"a/base.json", "b/base.json", "link.json"};
        runs.emplace_back([&folder, &stop, report, name = names[run % 3]] {
            SuppressWorker(folder / name, folder / report, {}, stop).Run();
        });
    }
    for (std::thread& run : runs) {
        run.join();
    }
    EXPECT_EQ(OrvlogConverter::SuppressBase::Read(path).Size(), Runs);
    EXPECT_EQ(OrvlogConverter::SuppressBase::Read(folder / "b/base.json").Size(), Runs);
}

} // namespace
} // namespace Orvanta
