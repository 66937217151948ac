#include "cache/CacheFolder.h"

#include "platform/NativePath.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace Orvanta {
namespace {

std::string EntryPath(const Digest& key) {
    return key.Text().substr(0, 2) + "/" + key.Text().substr(2) + ".orvresult";
}

void UseLast(const TestFolder& folder, const Digest& key, std::chrono::hours ago) {
    std::filesystem::last_write_time(NativePath(folder / EntryPath(key)),
                                     std::filesystem::file_time_type::clock::now() - ago);
}

TEST(CacheFolderTest, LeastRecentlyUsedGoFirstAndForeignFilesStay) {
    const TestFolder folder;
    CacheFolder cache(folder.Path());
    const Digest keys[] = {DigestOf("a"), DigestOf("b"), DigestOf("c")};
    for (const Digest& key : keys) {
        cache.Store(key, std::string(100, 'x'), ResultStore::Existing::MayStay);
        UseLast(folder, key, std::chrono::hours(2));
    }
    folder.Write("ab/notes.txt", "mine");
    folder.Write(EntryPath(keys[1]) + ".1-2.orvunfinished", "half");
    UseLast(folder, keys[2], std::chrono::hours(3));
    EXPECT_TRUE(cache.Find(keys[0])); // from now on the newest
    const CacheFolder::Contents removed = cache.Trim(250);
    EXPECT_EQ(removed.entries, 1U);
    EXPECT_FALSE(cache.Find(keys[2]));
    EXPECT_EQ(cache.Trim(120).entries, 1U);
    EXPECT_FALSE(cache.Find(keys[1]));
    EXPECT_EQ(cache.Find(keys[0]), std::string(100, 'x'));
    EXPECT_EQ(cache.Count().bytes, 100U);
    EXPECT_EQ(folder.Read("ab/notes.txt"), "mine");
    // A writer may still be at it.
    EXPECT_EQ(folder.Read(EntryPath(keys[1]) + ".1-2.orvunfinished"), "half");
}

TEST(CacheFolderTest, AbsentAndUnreadableOnesAreMisses) {
    const TestFolder folder;
    const Digest key = DigestOf("a");
    EXPECT_FALSE(CacheFolder(folder / "none").Find(key));
    EXPECT_EQ(CacheFolder(folder / "none").Trim(0).entries, 0U);
    folder.MakeFolder(EntryPath(key));
    EXPECT_FALSE(CacheFolder(folder.Path()).Find(key));
}

} // namespace
} // namespace Orvanta
