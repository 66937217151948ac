#include "platform/Console.h"

#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(CtrlC, SetsTheStopFlagAndSaysSoOnceAndOtherEventsAreDeclined) {
    ChildProgram child({"interrupt"});
    EXPECT_EQ(child.End(), 0);
    EXPECT_EQ(child.StandardOutput(), "Stopping analysis. This might take a while...\nstopped\n");
    EXPECT_EQ(child.StandardError(), "");
}

TEST(AvailableProcessorsOf, ThisProcessAreAtLeastOne) {
    EXPECT_GE(AvailableProcessors(), 1U);
}

} // namespace
} // namespace Orvanta
