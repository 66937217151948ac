#include "suppress/LineHash.h"

#include "support/Findings.h"
#include "suppress/SuppressEntry.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

// The rule as it is said, a byte at a time.
std::uint32_t PlainHash(std::string_view line) {
    std::uint32_t hash = 0;
    for (const char character : line) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 128 || byte == 9 || byte == 32) {
            continue;
        }
        hash = ((hash << 1) | (hash >> 31)) ^ byte;
    }
    return hash;
}

TEST(LineHash, SkipsBlanksTabsAndWhatIsNotAscii) {
    EXPECT_EQ(HashLine("", 2), 0U);
    EXPECT_EQ(HashLine(" \t ", 2), 0U);
    EXPECT_EQ(HashLine("A", 2), 65U);
    EXPECT_EQ(HashLine("AB", 2), 65U * 2 ^ 66U);
    EXPECT_EQ(HashLine("if (a == b)", 2), HashLine("\tif(a==b)  ", 2));
    EXPECT_EQ(HashLine("int \xC3\xA9;\xFF", 2), HashLine("int ;", 2));
    EXPECT_NE(HashLine("a;\r", 2), HashLine("a;", 2));
    const std::string longLine(200, 'z'); // the first bytes go all the way round
    EXPECT_EQ(HashLine(longLine, 2), PlainHash(longLine));
}

struct MarkCase {
    std::string_view line;
    std::string_view withoutMarks;
};

TEST(LineHash, IsThatOfTheLineWithoutItsMarks) {
    const MarkCase cases[] = {
        {"f(); //-V501", "f();"},
        {"f(); //-v1234 \t\r", "f();"},
        {"f(); //-V501 //-V502", "f();"},
        {"f(); //-V501//-V502", "f();"},
        {"//-V501", ""},
        {"f(); //-V50", "f(); //-V50"},
        {"f(); //-V50123", "f(); //-V50123"},
        {"f(); //-V501 text", "f(); //-V501 text"},
        {"f(); //-X501", "f(); //-X501"},
        {"f(); // -V501", "f(); // -V501"},
        {"f(); //-V501 x //-V502", "f(); //-V501 x"},
        {"f(); //-", "f(); //-"},
        {"f(); //-V501 //-V50", "f(); //-V501 //-V50"},
    };
    for (const MarkCase& row : cases) {
        EXPECT_EQ(HashLine(row.line, 2), PlainHash(row.withoutMarks)) << row.line;
        EXPECT_EQ(HashLine(row.line, 3), HashLine(row.line, 2)) << row.line;
    }
}

TEST(LineHash, IsThatOfTheNormalTextInOldBases) {
    for (const std::uint32_t version : {0U, 1U}) {
        EXPECT_EQ(HashLine(" a[12] = 7; ", version), PlainHash("a[_]=_;"));
        EXPECT_EQ(HashLine("f(); //-V501", version), PlainHash("f();//-V_"));
        EXPECT_NE(HashLine("f(); //-V501", version), HashLine("f();", version));
    }
    EXPECT_NE(HashLine("a[1];", 2), HashLine("a[2];", 2));
}

TEST(NormalizeText, LeavesNumbersAndSpacingOut) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},         {" \t\n\v\f\r ", ""}, {"a  b\t\nc", "a b c"},       {"  of 128 bytes, 64x", "of _ bytes, _x"},
        {"12 34", "_ _"}, {"V501", "V_"},       {"\xC3\xA9 1", "\xC3\xA9 _"},
    };
    for (const auto& [text, normal] : cases) {
        EXPECT_EQ(NormalizeText(text), normal) << text;
    }
}

TEST(SuppressEntry, StaysWhenCodeMoves) {
    const SuppressEntry entry = MakeSuppressEntry(FindingSaying("size 12", 1, "/p/a.c"), 2);
    EXPECT_EQ(entry, (SuppressEntry{"a.c", "V501", "size _", HashLine("before", 2), HashLine("x = 1;", 2),
                                    HashLine("after", 2)}));
    ReportMessage moved = FindingSaying("size 7  ", 1, "C:\\q\\a.c");
    moved.positions.front().line = 99;
    moved.level = 3;
    EXPECT_EQ(MakeSuppressEntry(moved, 2), entry);
    EXPECT_NE(MakeSuppressEntry(FindingSaying("size 12", 1, "/p/b.c"), 2), entry);
    EXPECT_NE(MakeSuppressEntry(FindingSaying("Size 12", 1, "/p/a.c"), 2), entry);
    EXPECT_NE(MakeSuppressEntry(FindingSaying("size 12", 1, "/p/a.c", "x = 2;"), 2), entry);
    EXPECT_EQ(MakeSuppressEntry({}, 2), SuppressEntry());
}

TEST(SuppressEntry, TakesHashesThatTheMessageBrings) {
    ReportMessage message = FindingSaying("m", 1, "a.c");
    MessagePosition& first = message.positions.front();
    first.prevHash = 1;
    first.currHash = 2;
    EXPECT_EQ(MakeSuppressEntry(message, 2).codeCurrent, HashLine("x = 1;", 2)); // not all three
    first.nextHash = 3;
    const SuppressEntry entry = MakeSuppressEntry(message, 2);
    EXPECT_EQ(entry.codePrev, 1U);
    EXPECT_EQ(entry.codeCurrent, 2U);
    EXPECT_EQ(entry.codeNext, 3U);
}

} // namespace
} // namespace OrvlogConverter
