#include "report/CompilerLine.h"

#include "report/Exceptions.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace OrvlogConverter {
namespace {

struct CompilerLineCase {
    std::string_view line;
    std::string_view file;
    std::uint32_t number;
    std::uint32_t level;
    std::string_view text;
};

TEST(CompilerLine, BecomesAnExternalMessage) {
    const CompilerLineCase cases[] = {
        {"x.c:3:7: warning: text", "x.c", 3, 2, "text"},
        {"x.c:3:7: warn :text ", "x.c", 3, 2, "text "},
        {"x.c:3:7:error:", "x.c", 3, 1, ""},
        {"C:\\a b\\x.c:3:7:   note  :  text", "C:\\a b\\x.c", 3, 3, "text"},
        {"a.c:1:1: error: b.c:2:2: note: text", "a.c:1:1: error: b.c", 2, 3, "text"},
        {"a:1:2:3:4: error: text", "a:1:2", 3, 1, "text"},
    };
    for (const CompilerLineCase& row : cases) {
        ReportMessage expected;
        expected.code = "External";
        expected.message = row.text;
        expected.level = row.level;
        expected.positions.resize(1);
        expected.positions[0].file = row.file;
        expected.positions[0].line = row.number;
        EXPECT_EQ(ReadCompilerLine(row.line), expected) << row.line;
    }
}

TEST(CompilerLine, OfAnotherShapeIsNone) {
    const std::string_view lines[] = {
        "",
        "x.c:3: warning: text",
        ":3:7: warning: text",
        "x.c:3:7: fatal error: text",
        "x.c:3:7: warning text",
        "x.c:3:7: Warning: text",
        "x.c:-3:7: warning: text",
        "x.c:3:7: warning: text\r",
    };
    for (const std::string_view line : lines) {
        EXPECT_EQ(ReadCompilerLine(line), std::nullopt) << line;
    }
    EXPECT_THROW(static_cast<void>(ReadCompilerLine("x.c:99999999999:7: error: text")), ParseException);
}

std::string RandomLine(std::mt19937& random) {
    static const std::string pieces[] = {"a", ":", ":", ":", "1", "22", " ", " ", "note", "warn", "ing", "error", "\r"};
    std::string line;
    for (auto count = std::uniform_int_distribution<int>(0, 14)(random); count > 0; --count) {
        line += pieces[std::uniform_int_distribution<std::size_t>(0, std::size(pieces) - 1)(random)];
    }
    return std::bernoulli_distribution(0.5)(random) ? line : "a:1:2: error: " + line;
}

TEST(CompilerLine, AgreesWithTheExpression) {
    const std::regex expression("(.+):([0-9]+):([0-9]+): *(note|warn|warning|error) *: *(.*) *");
    std::mt19937 random(1); // the same lines in every run
    int matches = 0;
    for (int round = 0; round < 6000; ++round) {
        const std::string line = RandomLine(random);
        std::smatch groups;
        const bool fits = std::regex_match(line, groups, expression);
        const std::optional<ReportMessage> message = ReadCompilerLine(line);
        ASSERT_EQ(message.has_value(), fits) << line;
        if (fits) {
            ++matches;
            ASSERT_EQ(message->positions[0].file, groups[1]) << line;
            ASSERT_EQ(std::to_string(message->positions[0].line), groups[2]) << line;
            ASSERT_EQ(message->message, groups[5]) << line;
        }
    }
    EXPECT_GT(matches, 300);
}

TEST(CompilerLine, LongLinesComeToAnEnd) {
    const std::string colons(1000000, ':');
    const std::string digits(1000000, '1');
    std::string numbers;
    for (int count = 0; count < 300000; ++count) {
        numbers += ":1";
    }
    EXPECT_EQ(ReadCompilerLine(colons), std::nullopt);
    EXPECT_EQ(ReadCompilerLine("a:" + digits + ":" + digits), std::nullopt);
    EXPECT_EQ(ReadCompilerLine(numbers + ": warnin"), std::nullopt);
    EXPECT_EQ(ReadCompilerLine("a:1:1:" + std::string(1000000, ' ') + "x"), std::nullopt);
}

} // namespace
} // namespace OrvlogConverter
