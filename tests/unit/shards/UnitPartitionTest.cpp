#include "shards/UnitPartition.h"

#include "report/JsonText.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace Orvanta {
namespace {

CompileCommand UnitOf(const std::string& source, const std::string& flag = "-O1") {
    static const auto compiler = std::make_shared<const CompilerInfo>();
    static const auto environment = std::make_shared<const Environment>();
    CompileCommand unit;
    unit.compiler = compiler;
    unit.environment = environment;
    unit.absoluteDirectory = std::make_shared<const std::string>("/src");
    unit.arguments = ArgumentList(std::vector<std::string>{"gcc", flag, "-c", source});
    unit.source.index = 3;
    return unit;
}

std::vector<CompileCommand> Units(std::size_t count) {
    std::vector<CompileCommand> units;
    for (std::size_t unit = 0; unit < count; ++unit) {
        units.push_back(UnitOf("u" + std::to_string(unit) + ".c"));
    }
    return units;
}

UnitPartition ByHash(const std::vector<CompileCommand>& units, std::uint32_t count) {
    std::vector<CostKey> keys(units.size());
    std::transform(units.begin(), units.end(), keys.begin(),
                   [](const CompileCommand& unit) { return CostKeyOf(unit); });
    return PartitionByHash(keys, count);
}

// As --stats writes it.
std::string LineOf(const std::string& source, const std::string& fate, const std::string& members = "") {
    std::string line = R"({"invocation":1,"unit":)";
    OrvlogConverter::AppendJsonString(line, SourcePath(UnitOf(source)));
    return line + R"(,"fate":")" + fate + '"' + members + "}\n";
}

TEST(UnitPartition, TheHashOfAUnitIsTheSameEverywhereAndWhateverBecomesOfTheOthers) {
    std::vector<CompileCommand> units = Units(1000);
    const UnitPartition whole = ByHash(units, 7);
    // Of another machine, too.
    EXPECT_EQ(UnitPartition(whole.begin(), whole.begin() + 8), (UnitPartition{2, 4, 2, 1, 6, 6, 4, 7}));
    units.erase(units.begin(), units.begin() + 500);
    EXPECT_EQ(ByHash(units, 7), UnitPartition(whole.begin() + 500, whole.end()));
    for (std::uint32_t shard = 1; shard <= 7; ++shard) {
        const auto own = std::count(whole.begin(), whole.end(), shard);
        EXPECT_TRUE(own > 100 && own < 200) << own;
    }
}

TEST(UnitPartition, PricesSpreadTheWorkEvenlyAndUnknownUnitsCountAsTheMedian) {
    const TestFolder folder;
    std::string text;
    const auto priceOf = [](std::size_t unit) {
        return 1 + unit * unit % 997 * (unit % 10 == 0 ? 20 : 1);
    };
    for (std::size_t unit = 0; unit < 400; ++unit) {
        text += LineOf("u" + std::to_string(unit) + ".c", "analyzed",
                       R"(,"core":{"wallMs":)" + std::to_string(priceOf(unit)) + "}");
    }
    const UnitPrices prices(folder.Write("costs", text));
    const std::vector<CompileCommand> units = Units(400);
    const UnitPartition partition = PartitionByPrice(units, 8, prices);
    std::vector<std::uint64_t> loads(8);
    for (std::size_t unit = 0; unit < partition.size(); ++unit) {
        loads[partition[unit] - 1] += priceOf(unit);
    }
    const auto [least, most] = std::minmax_element(loads.begin(), loads.end());
    EXPECT_LE(*most * 10, *least * 12);

    const UnitPrices few(
        folder.Write("few", LineOf("u0.c", "analyzed", R"(,"core":{"wallMs":7},"compiler":{"wallMs":2})") +
                                LineOf("u0.c", "analyzed", R"(,"core":{"wallMs":3})") +
                                LineOf("u1.c", "carried over", R"(,"compiler":{"wallMs":90})") +
                                LineOf("u2.c", "failed", R"(,"compiler":{"wallMs":90},"reason":"x")") +
                                LineOf("u3.c", "excluded") + LineOf("b.o", "skipped")));
    const auto find = [&few](const std::string& source, std::size_t occurrence = 0) {
        return few.Find(SourcePath(UnitOf(source)), occurrence);
    };
    EXPECT_EQ(find("u0.c"), 9U);
    EXPECT_EQ(find("u0.c", 1), 3U);
    EXPECT_EQ(find("u0.c", 5), 3U) << "of another command line";
    EXPECT_EQ(find("u1.c"), std::nullopt) << "its result was known";
    EXPECT_EQ(find("u2.c"), std::nullopt) << "the compiler has refused it";
    EXPECT_EQ(find("u3.c"), 0U);
    // Nothing is known of these: as many each.
    const std::vector<CompileCommand> others = {UnitOf("x.c"), UnitOf("y.c"), UnitOf("z.c"), UnitOf("w.c")};
    EXPECT_EQ(PartitionByPrice(others, 2, few), (UnitPartition{1, 2, 1, 2}));
}

TEST(UnitPartition, AShardKeepsItsUnitsByTheirNumbers) {
    const UnitPartition partition = ByHash(Units(40), 3);
    std::vector<bool> isTaken(40);
    Fingerprint fingerprint;
    for (std::uint32_t shard = 1; shard <= 3; ++shard) {
        CollectedCommands commands = {Units(40), {}, 40};
        const ShardSelection selection = KeepShard(commands, {shard, 3}, std::nullopt, RootMark(""));
        EXPECT_EQ(selection.allUnits, 40U);
        ASSERT_EQ(selection.units.size(), commands.units.size());
        for (std::size_t unit = 0; unit < commands.units.size(); ++unit) {
            EXPECT_EQ(commands.units[unit].SourceFile(), "u" + std::to_string(selection.units[unit]) + ".c");
            EXPECT_FALSE(isTaken[selection.units[unit]]);
            isTaken[selection.units[unit]] = true;
        }
        EXPECT_TRUE(shard == 1 || selection.partition == fingerprint);
        fingerprint = selection.partition;
    }
    EXPECT_EQ(std::count(isTaken.begin(), isTaken.end(), true), 40);
}

TEST(UnitPartition, WrongWordsAndFilesOfCostsAreToldWhereTheyAreWrong) {
    for (const char* const word : {"", "1", "/", "0/3", "4/3", "1/0", "1/100001", "a/3", "1/3/5", " 1/3", "-1/3"}) {
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(ParseShard(word)); }),
                  "Wrong value of --shard: \"" + std::string(word) +
                      "\", expected K/N with K from 1 to N and N up to 100000");
    }
    const TestFolder folder;
    const std::string good = R"({"invocation":1,"unit":"/a.c","fate":"analyzed","core":{"wallMs":1}})";
    for (const char* const bad :
         {"{", "[]", "", R"({"unit":"/a.c"})", R"({"fate":"analyzed"})", R"({"unit":1,"fate":"x"})",
          R"({"unit":"/a.c","fate":"analyzed","core":{"wallMs":"1"}})",
          R"({"unit":"/a.c","fate":"analyzed","core":{"wallMs":1e99}})",
          R"({"unit":"/a.c","fate":"analyzed","core":{"wallMs":-1}})"}) {
        const std::string path = folder.Write("bad", good + "\n" + bad + "\n");
        EXPECT_EQ(ErrorOf([&] { const UnitPrices prices(path); }),
                  path + ", line 2: expected an object as --stats writes it, with \"unit\" and \"fate\"");
    }
    const std::string empty = folder.Write("empty", "");
    EXPECT_EQ(ErrorOf([&] { const UnitPrices prices(empty); }), empty + " is empty, expected what --stats has written");
}

} // namespace
} // namespace Orvanta
