#include "cache/ResultCache.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {
namespace {

/// A cache as one run has it, of a tree that is the whole folder "tree".
struct CacheOfRun {
    explicit CacheOfRun(const TestFolder& folder, std::string_view tree = "tree",
                        ResultCache::Access access = ResultCache::Access::ReadAndWrite)
        : directory(folder / tree), source(directory + "/a.c"),
          cache(MakeResultStore(folder / "cache", ""), {access, std::uint64_t{1} << 20U}, RootMark(directory),
                DigestOf("core 1")) {}

    Digest KeyOf(const std::string& text, const SettingsMap& settings = {}) {
        return cache.KeyOf({text, source, directory, settings, directory + "/tmp-"});
    }

    std::string directory;
    std::string source;
    ResultCache cache;
};

CachedResult ResultIn(const std::string& file) {
    CachedResult result;
    result.findings.resize(1);
    result.findings[0].code = "V501";
    result.findings[0].message = "text";
    result.findings[0].positions.resize(1);
    result.findings[0].positions[0].file = file;
    result.dependencies = {file};
    result.output = "seen: " + file + "\n";
    return result;
}

TEST(ResultCacheTest, ResultsHoldForEveryCheckout) {
    const TestFolder folder;
    const Digest key = CacheOfRun(folder).KeyOf("int a;");
    CacheOfRun(folder).cache.Store(key, ResultIn(folder / "tree/a.c"));
    CacheOfRun other(folder, "other");
    ASSERT_EQ(other.KeyOf("int a;"), key);
    const std::optional<CachedResult> found = other.cache.Find(key);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->findings, ResultIn(folder / "other/a.c").findings);
    EXPECT_EQ(found->dependencies, ResultIn(folder / "other/a.c").dependencies);
    EXPECT_EQ(found->output, ResultIn(folder / "other/a.c").output);
    EXPECT_FALSE(other.cache.Find(other.KeyOf("int b;")));
}

TEST(ResultCacheTest, WhatDecidesAResultIsInItsKey) {
    const TestFolder folder;
    folder.Write("tree/a.h", "int a; // NOLINT");
    folder.Write("tree/sys.h", "int s;");
    const std::string text = "# 1 \"a.h\" 1\nint a;\n# 1 \"sys.h\" 1 3\nint s;\n";
    const SettingsMap settings = {{"std", "c++20"}, {"i-file", folder / "tree" + "/tmp-1.i"}};
    const Digest key = CacheOfRun(folder).KeyOf(text, settings);
    EXPECT_EQ(CacheOfRun(folder).KeyOf(text, {{"std", "c++20"}, {"i-file", folder / "tree" + "/tmp-2.i"}}), key);
    EXPECT_NE(CacheOfRun(folder).KeyOf(text, {{"std", "c++17"}}), key);
    folder.Write("tree/sys.h", "int s; //");
    EXPECT_EQ(CacheOfRun(folder).KeyOf(text, settings), key) << "of the system";
    folder.Write("tree/a.h", "int a; // edited");
    EXPECT_NE(CacheOfRun(folder).KeyOf(text, settings), key) << "a comment that the core may read";
}

TEST(ResultCacheTest, DamagedEntriesAreMissesAndReplaced) {
    const TestFolder folder;
    CacheOfRun run(folder);
    const Digest key = run.KeyOf("int a;");
    run.cache.Store(key, ResultIn(folder / "tree/a.c"));
    const std::string entry = "cache/" + key.Text().substr(0, 2) + "/" + key.Text().substr(2) + ".orvresult";
    const std::string whole = folder.Read(entry);
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        folder.Write(entry, damaged);
        EXPECT_FALSE(run.cache.Find(key)) << at;
        folder.Write(entry, whole.substr(0, at));
        EXPECT_FALSE(run.cache.Find(key)) << at;
    }
    CacheOfRun(folder, "tree", ResultCache::Access::ReadOnly).cache.Store(key, ResultIn(folder / "tree/a.c"));
    EXPECT_FALSE(run.cache.Find(key));
    run.cache.Store(key, ResultIn(folder / "tree/a.c"));
    EXPECT_TRUE(run.cache.Find(key));
}

} // namespace
} // namespace Orvanta
