#include "platform/FileStamp.h"

#include "platform/Exceptions.h"
#include "platform/FileSystemClock.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Orvanta {
namespace {

constexpr std::int64_t Second = 1'000'000'000;

TEST(FileStamp, IsOfFilesAlone) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "12345");
    ASSERT_TRUE(StampOf(path).has_value());
    EXPECT_EQ(StampOf(path)->size, 5U);
    EXPECT_EQ(StampOf(path), StampOf(path));
    for (const std::string& other : {std::string(), folder.Path(), folder / "none", path + '\0' + "more"}) {
        EXPECT_FALSE(StampOf(other).has_value()) << other;
    }
}

TEST(FileStamp, TellsTheTimeOfModification) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "");
    // Not every library sets parts of a second.
    const auto time = std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(NativePath(path)));
    std::filesystem::last_write_time(NativePath(path), time);
    const FileStamp before = *StampOf(path);
    std::filesystem::last_write_time(NativePath(path), time - std::chrono::seconds(100));
    EXPECT_EQ(before.modified - StampOf(path)->modified, 100 * Second);
}

TEST(FileSystemClock, TakesForOlderOnlyWhatIsSoForCertain) {
    const TestFolder folder;
    const auto before = std::chrono::steady_clock::now();
    const FileSystemClock clock(folder.Path());
    const std::int64_t now = StampOf(folder.Write("file", ""))->Newest();
    const auto later = std::chrono::steady_clock::now();
    EXPECT_FALSE(std::filesystem::exists(NativePath(folder / ".orvtmp-clock")));

    EXPECT_FALSE(clock.IsOlder({0, now, now}, before));
    EXPECT_FALSE(clock.IsOlder({0, now - 10 * Second, now}, before)) << "a modification is set back";
    EXPECT_FALSE(clock.IsOlder({0, now + 10 * Second, 0}, before)) << "a modification in the future";
    EXPECT_TRUE(clock.IsOlder({0, now - 10 * Second, 0}, later));
    EXPECT_FALSE(clock.IsOlder({0, now - 10 * Second, 0}, before - std::chrono::seconds(20)));
    EXPECT_THROW(FileSystemClock(folder / "none"), ZelmException);
}

} // namespace
} // namespace Orvanta
