#include "report/TextColumns.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

struct ColumnsCase {
    const char* text;
    std::size_t columns;
};

constexpr ColumnsCase ColumnsCases[] = {
    {"", 0},
    {"a/b.c", 5},
    {"gr\u00FC\u00DF", 4},
    {"e\u0301\u0327", 1},      // marks on a letter
    {"\u6E90\u30B3\u30FC", 6}, // wide letters
    {"\uFF21\uFF61", 3},       // of two widths
    {"\u1112\u1161\u11AB", 2}, // parts of one syllable
    {"\U0001F600", 2},
    {"\U00020000\u200D", 2},
    {"\u05E9\u05B8\u0627", 2},
};

TEST(Columns, AreThoseOfATerminal) {
    for (const ColumnsCase& row : ColumnsCases) {
        EXPECT_EQ(ColumnsOf(row.text), row.columns) << row.text;
    }
}

TEST(Columns, OfTheEndOfATextHoldWholeCharactersWithTheirMarks) {
    EXPECT_EQ(LastColumns("abc", 5), "abc");
    EXPECT_EQ(LastColumns("abc", 2), "bc");
    EXPECT_EQ(LastColumns("abc", 0), "");
    EXPECT_EQ(LastColumns("a\u6E90c", 2), "c") << "half of a wide letter is none";
    EXPECT_EQ(LastColumns("ae\u0301c", 2), "e\u0301c");
    EXPECT_EQ(LastColumns("ae\u0301c", 1), "c") << "no mark without its letter";
}

TEST(TerminalText, HoldsNothingThatDoesSomethingToATerminal) {
    EXPECT_EQ(TextForTerminal("gr\u00FC\u6E90.c"), "gr\u00FC\u6E90.c");
    EXPECT_EQ(TextForTerminal("a\x1b[2J\n\x7F\u0085\u202E\u2067.c"), "a?[2J?????.c");
    EXPECT_EQ(TextForTerminal("\xFF\xE6\xBA.c"), "??.c");
}

} // namespace
} // namespace OrvlogConverter
