#include "platform/TemporaryFolder.h"

#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/Paths.h"
#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

// Each system has names of its own for the variable that says where.
Environment TemporaryFilesIn(const std::string& folder) {
    return {{"TMPDIR", folder}, {"TMP", folder}, {"TEMP", folder}};
}

TEST(TemporaryFolderOfARun, IsGoneAfterwards) {
    const TestFolder system;
    ChildProgram run({"use-folder"}, TemporaryFilesIn(system.Path()));
    const std::string folder = run.FirstLine();
    EXPECT_EQ(run.End(), 0);
    EXPECT_EQ(DirectoryOf(folder), system.Path());
    EXPECT_TRUE(FileNameOf(folder).starts_with("orvanta-analyzer-")) << folder;
    EXPECT_TRUE(fs::is_empty(system.Path()));
}

TEST(TemporaryFolderOfAKilledRun, IsRemovedByTheNextOneThoseOfLiveRunsAreNot) {
    const TestFolder system;
    const Environment environment = TemporaryFilesIn(system.Path());
    ChildProgram killed({"hold-folder"}, environment);
    ChildProgram alive({"hold-folder"}, environment);
    const std::string left = killed.FirstLine();
    const std::string used = alive.FirstLine();
    killed.Kill();
    EXPECT_TRUE(PathExists(left));

    ChildProgram next({"use-folder"}, environment);
    EXPECT_EQ(next.End(), 0);
    EXPECT_FALSE(PathExists(left));
    EXPECT_TRUE(PathExists(JoinPath(used, "fragment")));
}

TEST(TemporaryFolderOfARun, SweepsOnlyWhatIsOurs) {
    const TestFolder system;
    const fs::path starting = system.MakeFolder("orvanta-analyzer-startingrun0");
    const fs::path file = system.Write("orvanta-analyzer-file00000000", "");
    const fs::path other = system.MakeFolder("another-program");
    ChildProgram run({"use-folder"}, TemporaryFilesIn(system.Path()));
    EXPECT_EQ(run.End(), 0);
    for (const fs::path& kept : {starting, file, other}) {
        EXPECT_TRUE(fs::exists(kept)) << kept;
    }
}

TEST(TemporaryFolderInASharedFolder, SweepsOnlyWhatRunsOfThisMachineHaveLeft) {
    const TestFolder shared;
    std::string prefix;
    {
        const TemporaryFolder run(shared.Path());
        prefix = FileNameOf(run.Path());
        prefix.erase(prefix.rfind('-') + 1);
    }
    EXPECT_TRUE(fs::is_empty(shared.Path()));
    const auto leave = [&shared](const std::string& name) {
        shared.Write(name + "/" + LockFile::FileName("temporary folder"), "");
        return JoinPath(shared.Path(), name);
    };
    const std::string left = leave(prefix + "0123456789ab");
    const std::string ofAnother = leave("orvanta-analyzer-another-0123456789ab");
    const std::string ofOneNamedAlike = leave(prefix + "2-0123456789ab");
    const TemporaryFolder next(shared.Path());
    EXPECT_FALSE(PathExists(left));
    EXPECT_TRUE(PathExists(ofAnother));
    EXPECT_TRUE(PathExists(ofOneNamedAlike));
}

TEST(TemporaryFoldersOfManyRuns, AtOnceDoNotSweepEachOther) {
    const TestFolder system;
    std::vector<std::unique_ptr<ChildProgram>> runs;
    for (int i = 0; i < 20; ++i) {
        runs.push_back(std::make_unique<ChildProgram>(Arguments{"hold-folder"}, TemporaryFilesIn(system.Path())));
    }
    for (const auto& run : runs) {
        EXPECT_TRUE(PathExists(JoinPath(run->FirstLine(), "fragment"))) << run->StandardError();
    }
}

} // namespace
} // namespace Orvanta
