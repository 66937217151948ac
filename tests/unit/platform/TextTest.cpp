#include "platform/Text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Orvanta {
namespace {

struct FillCase {
    std::string_view text;
    std::string_view filled; // with the values "one", "%1%" and "three"
};

const FillCase FillCases[] = {
    {"", ""},
    {"no placeholder", "no placeholder"},
    {"%1%", "one"},
    {"%3%%1%, %1%", "threeone, one"},
    {"a %2% is as is", "a %1% is as is"},
    {"100%, %1%", "100%, one"},
    {"%%1%", "%one"},
    {"%1", "%1"},
    {"%0%, %4%, %-1%", "%0%, %4%, %-1%"},
    {"%", "%"},
    {"%99999999999999999999%", "%99999999999999999999%"},
};

TEST(Placeholders, AreFilledOnceAndOnlyWhenThereIsAValue) {
    for (const FillCase& row : FillCases) {
        EXPECT_EQ(FillPlaceholders(row.text, {"one", "%1%", "three"}), row.filled) << row.text;
    }
}

TEST(Text, IsTrimmedAtBothEndsOnly) {
    EXPECT_EQ(Trim(" \t\r\n\v\fa b\n "), "a b");
    EXPECT_EQ(Trim(" \n "), "");
    EXPECT_EQ(Trim("\xc2\xa0"), "\xc2\xa0") << "only ASCII white space counts";
}

TEST(Text, IsTakenLineByLine) {
    std::string_view text = "one\r\n\n\rtwo \n\r\nlast\r";
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(TakeLine(text));
    }
    EXPECT_EQ(lines, (std::vector<std::string_view>{"one", "", "\rtwo ", "", "last"}));
    std::string_view list = "a;,b;";
    EXPECT_EQ(TakeUpTo(list, ",;"), "a");
    EXPECT_EQ(TakeUpTo(list, ",;"), "");
    EXPECT_EQ(TakeUpTo(list, ",;"), "b");
    EXPECT_EQ(list, "") << "nothing stands behind the last separator";
}

TEST(Text, IsANumberOnlyAsAWhole) {
    EXPECT_EQ(WholeNumber<int>("-12"), -12);
    EXPECT_EQ(WholeNumber<std::uint32_t>("4294967295"), 4294967295U);
    for (const std::string_view none : {"", " 1", "1 ", "+1", "1x", "0x1", "1.0", "--1"}) {
        int number = 0;
        EXPECT_EQ(ReadWholeNumber(none, number), std::errc::invalid_argument) << none;
        EXPECT_EQ(WholeNumber<int>(none), std::nullopt) << none;
    }
    std::uint32_t number = 0;
    EXPECT_EQ(ReadWholeNumber("4294967296", number), std::errc::result_out_of_range);
    EXPECT_EQ(WholeNumber<std::uint32_t>("-1"), std::nullopt);
}

TEST(Text, IsComparedWithoutRegardToAsciiCaseOnly) {
    EXPECT_TRUE(EqualsIgnoringCase("GCC.exe", "gcc.EXE"));
    EXPECT_FALSE(EqualsIgnoringCase("gcc", "gcc-12"));
    EXPECT_FALSE(EqualsIgnoringCase("\xc3\x84", "\xc3\xa4"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{")) << "they differ by the bit that letters differ by";
    EXPECT_TRUE(ContainsIgnoringCase("Free Software Foundation", "software f"));
    EXPECT_TRUE(ContainsIgnoringCase("", ""));
    EXPECT_FALSE(ContainsIgnoringCase("soft", "software"));
}

} // namespace
} // namespace Orvanta
