#include "buildinput/trace/LineReader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace Orvanta {

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    LineReader reader(stream);
    std::vector<std::string> lines;
    for (std::string_view line; reader.Next(line);) {
        lines.emplace_back(line);
        EXPECT_EQ(reader.Number(), lines.size());
    }
    return lines;
}

TEST(LineReader, HandsOutLinesOfAnyEnd) {
    using Lines = std::vector<std::string>;
    EXPECT_EQ(LinesOf(""), Lines{});
    EXPECT_EQ(LinesOf("\n"), Lines{""});
    EXPECT_EQ(LinesOf("a\n\nb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(LinesOf("a\r\nb\r"), (Lines{"a", "b"}));
    EXPECT_EQ(LinesOf(std::string("a\0b\nc\n", 6)), (Lines{std::string("a\0b", 3), "c"}));
}

TEST(LineReader, ReadsLinesAcrossBlocks) {
    std::vector<std::string> expected;
    std::string text;
    for (std::size_t length : {0U, 1U, 100000U, 262143U, 262144U, 262145U, 700000U, 3U}) {
        expected.emplace_back(length, static_cast<char>('a' + expected.size()));
        text += expected.back() + '\n';
    }
    EXPECT_EQ(LinesOf(text), expected);
}

TEST(LineReader, CutsALineWithoutEnd) {
    const std::string endless(LineReader::LongestLine * 2, 'x');
    const std::vector<std::string> lines = LinesOf(endless + "\nlast");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].size(), LineReader::LongestLine);
    EXPECT_EQ(lines[1], "last");
    EXPECT_EQ(LinesOf(endless).size(), 1U);
}

} // namespace

} // namespace Orvanta
