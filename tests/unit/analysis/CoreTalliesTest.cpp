#include "analysis/CoreTallies.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(CoreTallies, CountEachThingOnceWhateverTheOrder) {
    CoreTallies first;
    EXPECT_EQ(TakeTallies("text\n<}tally{>Hidden\tb.h:1\n<}tally{>No rules\n last line without an end", first),
              "text\n last line without an end");
    CoreTallies second;
    EXPECT_EQ(TakeTallies("<}tally{>Hidden\tb.h:1\n<}tally{>Hidden\ta.c:7\n<}tally{>No rules\n", second), "");
    const std::string expected = "Hidden: 2, such as a.c:7\nNo rules\n";
    CoreTallies forwards = first;
    AddTallies(forwards, CoreTallies(second));
    AddTallies(second, std::move(first));
    EXPECT_EQ(TalliesText(forwards), expected);
    EXPECT_EQ(TalliesText(second), expected);
    EXPECT_EQ(TalliesText({}), "");
}

} // namespace
} // namespace Orvanta
