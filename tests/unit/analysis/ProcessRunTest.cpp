#include "analysis/ProcessRun.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

struct TellingCase {
    const char* output;
    const char* line;
};

constexpr TellingCase TellingCases[] = {
    {"", ""},
    {"\n  \n", ""},
    {"warning: x\na.c:3:1: fatal error: b.h: No such file\ncompilation", "a.c:3:1: fatal error: b.h: No such file"},
    {"\r\nfirst\r\nsecond\r\n", "first"},
    {"one line without an end", "one line without an end"},
};

TEST(TellingLine, IsTheFirstErrorElseTheFirstLineThatIsNotBlank) {
    for (const TellingCase& row : TellingCases) {
        EXPECT_EQ(TellingLine(row.output), row.line) << row.output;
    }
}

} // namespace
} // namespace Orvanta
