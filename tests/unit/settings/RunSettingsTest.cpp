#include "settings/RunSettings.h"

#include "support/HostPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(RunSettings, ExcludeTheCompilersOwnSourcesByDefault) {
    const RunSettings run;
    EXPECT_TRUE(run.exclusions.Matches(R"(C:\Program Files\Microsoft Visual Studio\2022\x.cpp)"));
    EXPECT_TRUE(run.exclusions.Matches(R"(d:\program files (x86)\Microsoft Visual Studio 14.0\VC\crt\x.cpp)"));
    EXPECT_FALSE(run.exclusions.Matches(R"(C:\project\x.cpp)"));
    EXPECT_TRUE(run.onlyPaths.IsEmpty());
}

TEST(RunSettings, TakeOverExclusionsAndCompilerNames) {
    RunSettings run;
    const std::size_t defaultNames = run.compilerNames.size();
    ApplySettings(run, {
                           {"exclude-path", HostPath("/src/lib")},
                           {"exclude-path", "*/gen/*"},
                           {"compiler", "mycc"},
                           {"compiler", "mycxx"},
                       });
    EXPECT_TRUE(run.exclusions.Matches(HostPath("/src/lib/a.c")));
    EXPECT_TRUE(run.exclusions.Matches(HostPath("/src/gen/a.c")));
    ASSERT_EQ(run.compilerNames.size(), defaultNames + 2);
    EXPECT_EQ(run.compilerNames[defaultNames], "mycc");
    EXPECT_EQ(run.compilerNames.back(), "mycxx");
}

TEST(RunSettings, OnlyExcludePathStandsSeveralTimes) {
    RunSettings run;
    ApplySettings(run, {
                           {"exclude-path", "/b"},
                           {"exclude-path", "/a"},
                           {"platform", "x"},
                           {"platform", "y"},
                       });
    ApplySettings(run, {
                           {"exclude-path", "/c"},
                           {"platform", "z"},
                       });
    EXPECT_THAT(run.userSettings, ElementsAre(Pair("exclude-path", "/b"), Pair("exclude-path", "/a"),
                                              Pair("exclude-path", "/c"), Pair("platform", "z")));
    OverrideSetting(run, "platform", "option");
    OverrideSetting(run, "preprocessor", "gcc");
    EXPECT_EQ(LastValue(run.userSettings, "platform"), "option");
    EXPECT_EQ(run.userSettings.count("platform"), 1U);
    EXPECT_EQ(LastValue(run.userSettings, "preprocessor"), "gcc");
    EXPECT_EQ(LastValue(run.userSettings, "language"), std::nullopt);
}

} // namespace
} // namespace Orvanta
