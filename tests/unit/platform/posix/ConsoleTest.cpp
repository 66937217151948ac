#include "platform/Console.h"

#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

#include <thread>

namespace Orvanta {
namespace {

TEST(Interrupt, SetsTheStopFlagAndSaysSoOnce) {
    ChildProgram child({"interrupt"});
    EXPECT_EQ(child.End(), 0);
    EXPECT_EQ(child.StandardOutput(), "Stopping analysis. This might take a while...\nstopped\n");
    EXPECT_EQ(child.StandardError(), "");
}

TEST(AvailableProcessorsOf, ThisProcessAreNoMoreThanThereAre) {
    EXPECT_GE(AvailableProcessors(), 1U);
    EXPECT_LE(AvailableProcessors(), std::thread::hardware_concurrency());
}

} // namespace
} // namespace Orvanta
