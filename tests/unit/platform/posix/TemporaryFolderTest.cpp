#include "platform/TemporaryFolder.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFolderOfARun, IsGoneAfterwards) {
    const TestFolder system;
    ChildProgram run(
        {
            "use-folder"
    },
        {{"TMPDIR", system.Path()}});
    const std::string folder = run.FirstLine();
    EXPECT_EQ(run.End(), 0);
    EXPECT_EQ(DirectoryOf(folder), system.Path());
    EXPECT_TRUE(FileNameOf(folder).starts_with("orvanta-analyzer-")) << folder;
    EXPECT_TRUE(fs::is_empty(system.Path()));
}

TEST(TemporaryFolderOfAKilledRun, IsRemovedByTheNextOneThoseOfLiveRunsAreNot) {
    const TestFolder system;
    const Environment environment = {
        {"TMPDIR", system.Path()}
    };
    ChildProgram killed({"hold-folder"}, environment);
    ChildProgram alive({"hold-folder"}, environment);
    const std::string left = killed.FirstLine();
    const std::string used = alive.FirstLine();
    killed.Kill();
    EXPECT_TRUE(PathExists(left));

    ChildProgram next({"use-folder"}, environment);
    EXPECT_EQ(next.End(), 0);
    EXPECT_FALSE(PathExists(left));
    EXPECT_TRUE(PathExists(used + "/fragment"));
}

TEST(TemporaryFolderOfARun, SweepsOnlyWhatIsOurs) {
    const TestFolder system;
    const fs::path starting = system.MakeFolder("orvanta-analyzer-starting");
    const fs::path died = system.MakeFolder("orvanta-analyzer-died");
    fs::last_write_time(died, fs::file_time_type::clock::now() - std::chrono::hours(25));
    const fs::path file = system.Write("orvanta-analyzer-file", "");
    const fs::path other = system.MakeFolder("another-program");
    fs::last_write_time(other, fs::file_time_type::clock::now() - std::chrono::hours(25));
    const fs::path link = system / "orvanta-analyzer-link";
    fs::create_directory_symlink(other, link);

    ChildProgram run(
        {
            "use-folder"
    },
        {{"TMPDIR", system.Path()}});
    EXPECT_EQ(run.End(), 0);
    EXPECT_FALSE(fs::exists(died));
    for (const fs::path& kept : {starting, file, other, link}) {
        EXPECT_TRUE(fs::exists(fs::symlink_status(kept))) << kept;
    }
}

TEST(TemporaryFoldersOfManyRuns, AtOnceDoNotSweepEachOther) {
    const TestFolder system;
    std::vector<std::unique_ptr<ChildProgram>> runs;
    for (int i = 0; i < 20; ++i) {
        runs.push_back(std::make_unique<ChildProgram>(
            Arguments{
                "hold-folder"
        },
            Environment{{"TMPDIR", system.Path()}}));
    }
    for (const auto& run : runs) {
        EXPECT_TRUE(PathExists(run->FirstLine() + "/fragment")) << run->StandardError();
    }
}

} // namespace
} // namespace Orvanta
