// Guards against a cache of results that starts the core for what is known, or that answers with what is not.

#include "e2e/support/IncrementalTest.h"
#include "platform/NativePath.h"

#include <filesystem>

namespace Orvanta {

namespace {

class CacheTest : public IncrementalTest {
protected:
    RunResult Cached(const Arguments& more = {}) {
        sandbox.ForgetCoreCalls();
        Arguments options = {"-o", "report.json", "--cache", "cache"};
        options.insert(options.end(), more.begin(), more.end());
        return sandbox.Analyze(options);
    }

    void ForgetHistory() const { std::filesystem::remove_all(NativePath(sandbox.Path(".Orvanta"))); }
};

TEST_F(CacheTest, AKnownTextStartsNoCoreAndGivesTheReportOfACleanRun) {
    MakeCleanFolder();
    EXPECT_TRUE(Cached().Says("Result cache: 0 of 3 files were known (0%)\n"));
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c", "c.c"}));
    for (const Arguments& options : {Arguments{}, Arguments{"-i"}, Arguments{"-i", "--cache-readonly"}}) {
        ForgetHistory();
        const RunResult again = Cached(options);
        EXPECT_EQ(again.exitCode, 0) << again;
        EXPECT_TRUE(again.Says("(0 analyzed, 3 carried over, 0 failed")) << again;
        EXPECT_TRUE(again.Says("Result cache: 3 of 3 files were known (100%)\n")) << again;
        EXPECT_EQ(Analyzed(), Names{});
        ExpectReportOfCleanRun();
    }
    // From the second run with a history on, the files of the units are known as well.
    ForgetHistory();
    Cached({"-i"});
    EXPECT_TRUE(sandbox.CoreCalls().empty() || Analyzed().empty());
    EXPECT_EQ(Listed(), Names{});
}

TEST_F(CacheTest, WhatChangesAResultIsAMiss) {
    MakeCleanFolder();
    Cached();
    sandbox.Write("common.h", "int common; // a comment that the core may read\n");
    Cached();
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c"}));
    Cached({"-a", "64"});
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c", "c.c"}));
    sandbox.SetVariable("FAKE_CORE_VERSION", "2");
    Cached();
    EXPECT_EQ(Analyzed(), (Names{"a.c", "b.c", "c.c"}));
}

TEST_F(CacheTest, FailuresAndWhatMayOnlyBeReadAreNotKept) {
    sandbox.WriteScript("b.c", {"exit 1"});
    EXPECT_EQ(Cached().exitCode, 1);
    EXPECT_EQ(Cached({"--cache-readonly"}).exitCode, 1);
    EXPECT_EQ(Analyzed(), Names{"b.c"});
    sandbox.WriteScript("b.c", {});
    sandbox.Write("c.c", "int changed;\n");
    EXPECT_EQ(Cached({"--cache-readonly"}).exitCode, 0);
    EXPECT_EQ(Analyzed(), (Names{"b.c", "c.c"}));
    Cached();
    EXPECT_EQ(Analyzed(), (Names{"b.c", "c.c"}));
    EXPECT_EQ(sandbox.Run({"cache", "verify", "--cache", "cache"}).exitCode, 0);
    EXPECT_TRUE(sandbox.Analyze({"--cache-readonly"}).Says("Error: --cache-readonly, --cache-size and "));
    EXPECT_TRUE(Cached({"--cache", ""}).Says("Error: Wrong value of --cache: it is empty"));
    // A place that can't be written to costs a warning.
    sandbox.Write("file", "");
    sandbox.Write("c.c", "int again;\n");
    const RunResult result = Cached({"--cache", "file"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("Warning: the cache of results did not work: ")) << result;
}

} // namespace

} // namespace Orvanta
