// Guards against units that are killed because they ran together, against workers that idle while there is room, and
// against a unit that never gets its turn.

#include "analysis/MemoryPlan.h"

#include <gtest/gtest.h>

#include <vector>

namespace Orvanta {

namespace {

constexpr std::uint64_t Gigabyte = std::uint64_t{1} << 30U;

std::vector<std::size_t> BeginAll(MemoryPlan& plan) {
    std::vector<std::size_t> begun;
    while (const auto unit = plan.Begin()) {
        begun.push_back(*unit);
    }
    return begun;
}

using Units = std::vector<std::size_t>;

TEST(MemoryPlan, BeginsWhatFitsAndAlwaysOne) {
    MemoryPlan plan(10);
    const std::uint64_t peaks[] = {7, 5, 3, 20, 2};
    for (std::size_t unit = 0; unit < std::size(peaks); ++unit) {
        plan.Add(unit, {peaks[unit], 0});
    }
    EXPECT_EQ(BeginAll(plan), (Units{0, 2})) << "the first that fits beside the first";
    plan.End(2, 3);
    EXPECT_EQ(BeginAll(plan), (Units{4}));
    plan.End(0, 7);
    EXPECT_EQ(BeginAll(plan), (Units{1}));
    plan.End(1, 5);
    EXPECT_EQ(BeginAll(plan), Units{});
    plan.End(4, 2);
    EXPECT_EQ(BeginAll(plan), (Units{3})) << "larger than all that there is";

    MemoryPlan limitless(0);
    for (std::size_t unit = 0; unit < 3; ++unit) {
        limitless.Add(unit, {100 * Gigabyte, 0});
    }
    EXPECT_EQ(BeginAll(limitless), (Units{0, 1, 2}));
}

TEST(MemoryPlan, LetsNoUnitWaitForEver) {
    MemoryPlan plan(10);
    plan.Add(0, {4, 0});
    EXPECT_EQ(plan.Begin(), 0U);
    plan.Add(1, {8, 0});
    std::size_t unit = 2;
    for (; unit < 1000; ++unit) {
        plan.Add(unit, {4, 0});
        if (!plan.Begin()) {
            break;
        }
        plan.End(unit, 4);
    }
    EXPECT_LT(unit, 100U) << "small ones pass for ever";
    plan.End(0, 4);
    EXPECT_EQ(plan.Begin(), 1U);
}

TEST(MemoryPlan, LearnsFromUnitsThatHaveEnded) {
    MemoryPlan plan(8 * Gigabyte);
    // Nothing is known: a gigabyte each. Then eight times their size, as others of other sizes have taken.
    for (std::size_t unit = 0; unit < 8; ++unit) {
        plan.Add(unit, {0, (unit + 1) * Gigabyte / 64});
    }
    EXPECT_EQ(BeginAll(plan).size(), 8U);
    for (std::size_t unit = 0; unit < 8; ++unit) {
        plan.End(unit, (unit + 1) * Gigabyte / 8);
    }
    for (std::size_t unit = 10; unit < 20; ++unit) {
        plan.Add(unit, {0, Gigabyte / 4});
    }
    const std::size_t large = BeginAll(plan).size();
    EXPECT_GE(large, 2U);
    EXPECT_LE(large, 4U) << "of two gigabytes each";
}

TEST(MemoryPlan, RunsOneAgainAlone) {
    MemoryPlan plan(10);
    for (std::size_t unit = 0; unit < 3; ++unit) {
        plan.Add(unit, {3, 0});
    }
    EXPECT_EQ(plan.Begin(), 0U);
    EXPECT_FALSE(plan.HadCompany(0));
    EXPECT_EQ(plan.Begin(), 1U);
    EXPECT_TRUE(plan.HadCompany(0));
    plan.End(0, 0);
    plan.AddAlone(0);
    EXPECT_FALSE(plan.BeginAlone(0)) << "another runs";
    EXPECT_EQ(plan.Begin(), std::nullopt) << "and none begins";
    plan.End(1, 3);
    EXPECT_TRUE(plan.BeginAlone(0));
    EXPECT_FALSE(plan.HadCompany(0));
    EXPECT_EQ(plan.Begin(), std::nullopt);
    plan.End(0, 3);
    EXPECT_EQ(plan.Begin(), 2U);
}

} // namespace

} // namespace Orvanta
