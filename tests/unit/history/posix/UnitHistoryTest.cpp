#include "unit/history/HistoryBuild.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Orvanta {
namespace {

// A path of which the system can't tell what is there, as one behind a circle of links, is no path where nothing is:
// what the unit saw there is not known.
TEST(UnitHistory, DoesNotTakeWhatCanNotBeToldForAbsent) {
    const HistoryBuild build(Both);
    const Names lookedFor = {build.folder / "specs"};
    const auto run = [&] {
        const auto history = build.Read();
        history->Watch(0, lookedFor).Keep(build.DependenciesOf(0), build.FindingsIn(0));
        history->Save();
        return build.Unchanged(*build.Read());
    };
    EXPECT_EQ(run(), Both);
    std::filesystem::create_symlink("specs", build.folder / "specs");
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"b.c"}) << "it may be there now";
    EXPECT_EQ(run(), Names{"b.c"});
    std::filesystem::remove(build.folder / "specs");
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"b.c"}) << "the unit ran while it could not be told";
}

// What a file is counts, not how it is called.
TEST(UnitHistory, FindsAFileByAnyOfItsNames) {
    const HistoryBuild build(Both);
    std::filesystem::create_hard_link(build.folder / "own.h", build.folder / "name.h");
    std::vector<bool> found;
    EXPECT_EQ(build.Read()->UnitsMadeOf(Names{build.folder / "name.h"}, found), (std::vector{false, true}));
    EXPECT_EQ(found, std::vector{true});
}

} // namespace
} // namespace Orvanta
