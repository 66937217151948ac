#include "platform/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {
namespace {

struct FillCase {
    std::string_view text;
    std::string_view filled; // with the values "one", "%1%" and "three"
};

const FillCase FillCases[] = {
    {"",                       ""                      },
    {"no placeholder",         "no placeholder"        },
    {"%1%",                    "one"                   },
    {"%3%%1%, %1%",            "threeone, one"         },
    {"a %2% is as is",         "a %1% is as is"        },
    {"100%, %1%",              "100%, one"             },
    {"%%1%",                   "%one"                  },
    {"%1",                     "%1"                    },
    {"%0%, %4%, %-1%",         "%0%, %4%, %-1%"        },
    {"%",                      "%"                     },
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
