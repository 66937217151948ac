#include "history/UnitCosts.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace Orvanta {
namespace {

using std::chrono::microseconds;

constexpr CostKind Analysis = CostKind::Analysis;

// A cost that the file can hold without loss, another one for each number.
UnitCost CostOf(std::uint64_t number) {
    const auto time = microseconds(number * 1000);
    return {.compiler = {time, time * 2, number * 1024},
            .core = {time * 3, time * 4, number * 2048},
            .textBytes = number * 100'000'000'000};
}

void Keep(const TestFolder& folder, const CostKey& key, std::uint64_t number, std::size_t units = 10) {
    UnitCosts costs(folder.Path());
    costs.Record(Analysis, key, CostOf(number));
    costs.Save(units);
}

std::optional<UnitCost> Kept(const TestFolder& folder, const CostKey& key, CostKind kind = Analysis) {
    return UnitCosts(folder.Path()).Find(kind, key);
}

TEST(UnitCosts, AreThoseOfTheLastRunOfTheUnitWithItsArgumentsElseOfItsSource) {
    const TestFolder folder;
    EXPECT_TRUE(UnitCosts(folder.Path()).IsEmpty());
    Keep(folder, {7, 1}, 1);
    Keep(folder, {7, 2}, 2);
    Keep(folder, {3, 1}, 3);
    Keep(folder, {7, 1}, 4);
    EXPECT_EQ(Kept(folder, {7, 1}), CostOf(4));
    EXPECT_EQ(Kept(folder, {7, 2}), CostOf(2)) << "what did not run keeps its cost";
    EXPECT_EQ(Kept(folder, {3, 9}), CostOf(3)) << "of other arguments";
    EXPECT_EQ(Kept(folder, {4, 1}), std::nullopt);
    EXPECT_EQ(Kept(folder, {8, 1}), std::nullopt);
    EXPECT_EQ(Kept(folder, {7, 1}, CostKind::Listing), std::nullopt) << "each kind of work has its own";
}

TEST(UnitCosts, LongerThanTheFileCountsAreTheLongestThatItCounts) {
    const TestFolder folder;
    UnitCosts costs(folder.Path());
    costs.Record(Analysis, {1, 1}, {.core = {std::chrono::hours(1000), microseconds(-1), 0}});
    costs.Save(1);
    EXPECT_GT(Kept(folder, {1, 1})->core.wall, std::chrono::hours(100));
    EXPECT_EQ(Kept(folder, {1, 1})->core.processor.count(), 0);
}

TEST(UnitCosts, OfUnitsThatAreGoneMakeRoomTheOldestFirst) {
    const TestFolder folder;
    Keep(folder, {1, 1}, 1);
    UnitCosts many(folder.Path());
    for (std::uint64_t unit = 2; unit < 3000; ++unit) {
        many.Record(Analysis, {unit, 0}, CostOf(2));
    }
    many.Save(3000);
    EXPECT_EQ(Kept(folder, {1, 1}), CostOf(1)) << "there is room for it";
    Keep(folder, {5000, 1}, 3, 1);
    EXPECT_EQ(Kept(folder, {1, 1}), std::nullopt);
    EXPECT_EQ(Kept(folder, {5000, 1}), CostOf(3));
}

TEST(UnitCosts, ThatAreDamagedTellNothingAndAreReplaced) {
    const TestFolder folder;
    Keep(folder, {7, 1}, 1);
    const std::string whole = folder.Read("unit_costs.bin");
    for (std::size_t place = 0; place < whole.size(); ++place) {
        std::string flipped = whole;
        flipped[place] = static_cast<char>(flipped[place] ^ 1);
        folder.Write("unit_costs.bin", flipped);
        EXPECT_TRUE(UnitCosts(folder.Path()).IsEmpty()) << place;
        folder.Write("unit_costs.bin", whole.substr(0, place));
        EXPECT_TRUE(UnitCosts(folder.Path()).IsEmpty()) << place;
    }
    Keep(folder, {7, 1}, 2);
    EXPECT_EQ(Kept(folder, {7, 1}), CostOf(2));
}

} // namespace
} // namespace Orvanta
