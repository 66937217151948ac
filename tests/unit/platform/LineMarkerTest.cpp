#include "platform/LineMarker.h"

#include <gtest/gtest.h>

#include <ostream>

namespace Orvanta {
namespace {

struct MarkerCase {
    const char* text;
    std::uint32_t line;
    const char* name;
    bool entersFile;
    bool isSystemHeader;
};

void PrintTo(const MarkerCase& row, std::ostream* stream) {
    *stream << row.text;
}

const MarkerCase MarkerCases[] = {
    {R"(# 12 "u.c")", 12, "u.c", false, false},
    {R"(# 1 "/usr/include/stdio.h" 1 3 4)", 1, "/usr/include/stdio.h", true, true},
    {R"(# 6 "u.c" 3 4)", 6, "u.c", false, true},
    {R"(# 2 "u.c" 2)", 2, "u.c", false, false},
    {R"(#line 7 "C:\\a b\\u.c")", 7, R"(C:\\a b\\u.c)", false, false},
    {R"(  #  line  7   "u.c"  )", 7, "u.c", false, false},
    {R"(# 3 "a \"b\".h" 1)", 3, R"(a \"b\".h)", true, false},
    {"#line 40", 40, "", false, false},
    {"# 41\r", 41, "", false, false},
};

class LineMarkers : public testing::TestWithParam<MarkerCase> {};

TEST_P(LineMarkers, GiveLineNameAndFlags) {
    const auto marker = ReadLineMarker(GetParam().text);
    ASSERT_TRUE(marker.has_value());
    EXPECT_EQ(marker->line, GetParam().line);
    EXPECT_EQ(marker->quotedName, GetParam().name);
    EXPECT_EQ(marker->entersFile, GetParam().entersFile);
    EXPECT_EQ(marker->isSystemHeader, GetParam().isSystemHeader);
}

INSTANTIATE_TEST_SUITE_P(Cases, LineMarkers, testing::ValuesIn(MarkerCases));

TEST(LineMarker, OtherLinesAreNone) {
    for (const char* text : {"", "#", "int a;", "#pragma once", "# pragma 3", "#line", "#line x", "# 3 u.c", "# 3 \"",
                             "#define A 3", "# 99999999999 \"u.c\"", "a # 1 \"u.c\""}) {
        EXPECT_FALSE(ReadLineMarker(text).has_value()) << text;
    }
}

TEST(LineMarker, NamesLoseTheirEscapes) {
    EXPECT_EQ(UnquotedName(R"(C:\\new\\u.c)"), R"(C:\new\u.c)");
    EXPECT_EQ(UnquotedName(R"(a \"b\".h)"), R"(a "b".h)");
    EXPECT_EQ(UnquotedName(R"(\303\244.h)"), "\303\244.h");
    EXPECT_EQ(UnquotedName(R"(C:\new\30)"), R"(C:\new\30)");
    EXPECT_EQ(UnquotedName("a\\"), "a\\");
}

} // namespace
} // namespace Orvanta
