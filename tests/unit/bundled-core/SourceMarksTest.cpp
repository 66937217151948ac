#include "bundled/SourceMarks.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(SourceMarks, HideTheChecksThatTheyName) {
    const std::string ids[] = {"nullPointer", "clang-analyzer-core.NullDereference"};

    struct {
        const char* line;
        const char* lineAbove;
        bool isHidden;
    } const cases[] = {
        {"*p = 1; // cppcheck-suppress nullPointer // checked", "", true},
        {"*p = 1; /* cppcheck-suppress[memleak, nullPointer] */", "", true},
        {"*p = 1; // cppcheck-suppress memleak", "", false},
        {"*p = 1;", "    // cppcheck-suppress nullPointer", true},
        {"*p = 1;", "*q = 1; // cppcheck-suppress nullPointer", false},
        {"*p = 1; // NOLINT", "", true},
        {"*p = 1; // NOLINT(cert-*, clang-analyzer-*)", "", true},
        {"*p = 1; // NOLINT(cert-*)", "", false},
        {"*p = 1;", "// NOLINTNEXTLINE(nullPointer)", true},
        {"*p = 1; // NOLINTNEXTLINE", "// NOLINTBEGIN", false},
        {"*p = 1; //-V:nullPointer,memleak", "", true},
        {"*p = 1; //-VExternal", "", true},
        {"*p = 1; //-V501 //-V", "", false},
        {"p = \"// NOLINT\"; *p = 1;", "", false},
    };

    for (const auto& row : cases) {
        EXPECT_EQ(IsHiddenByMark(row.line, row.lineAbove, ids, "External"), row.isHidden) << row.lineAbove << '\n'
                                                                                          << row.line;
    }
}

} // namespace
} // namespace Orvanta
