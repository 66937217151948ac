#include "unit/history/HistoryBuild.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Orvanta {
namespace {

const Names Both = {"a.c", "b.c"};

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
}

} // namespace
} // namespace Orvanta
