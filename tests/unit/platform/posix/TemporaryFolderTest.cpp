#include "platform/TemporaryFolder.h"

#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFolderOnPosix, SweepsWhatDiedAtItsStartAndFollowsNoLink) {
    const TestFolder system;
    const fs::path died = system.MakeFolder("orvanta-analyzer-diedatstart0");
    fs::last_write_time(died, fs::file_time_type::clock::now() - std::chrono::hours(25));
    const fs::path other = system.MakeFolder("another-program");
    fs::last_write_time(other, fs::file_time_type::clock::now() - std::chrono::hours(25));
    const fs::path link = system / "orvanta-analyzer-linktoothers";
    fs::create_directory_symlink(other, link);

    const Environment environment{{"TMPDIR", system.Path()}};
    ChildProgram run({"use-folder"}, environment);
    EXPECT_EQ(run.End(), 0);
    EXPECT_FALSE(fs::exists(died));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(fs::exists(other));
}

} // namespace
} // namespace Orvanta
