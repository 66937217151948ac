#include "bundled/TypeChecks.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

std::string Blanked(std::string text) {
    BlankTypeChecks(text);
    return text;
}

TEST(TypeChecksTest, BlankedOnesLeaveLinesAndColumns) {
    const std::string text = "({ int o = (1); if(__builtin_constant_p(o)) { if (!__builtin_types_compatible_p(\n"
                             "int, long)) err(\"}\"); } f(o); })";
    const std::string blanked = Blanked(text);
    EXPECT_EQ(blanked.size(), text.size());
    EXPECT_EQ(blanked.find('\n'), text.find('\n'));
    EXPECT_EQ(blanked.find(" f(o); })"), text.find(" f(o); })"));
    std::string left = blanked;
    std::erase(left, ' ');
    EXPECT_EQ(left, "({into=(1);;\nf(o);})");
    // Compilers break lines inside of them.
    left = Blanked(
        "if(__builtin_constant_p(o)) { __builtin_types_compatible_p(\n# 3 \"a.c\" 3\nint, int\n# 3 \"a.c\"\n);}");
    std::erase(left, ' ');
    EXPECT_EQ(left, ";\n#3\"a.c\"3\n\n#3\"a.c\"\n");
}

TEST(TypeChecksTest, OtherBlocksStay) {
    for (const std::string text : {
             "if (__builtin_constant_p(n)) { return fast(n); }",
             "if (__builtin_constant_p(n) && g()) { __builtin_types_compatible_p(a, b); }",
             "notif(__builtin_constant_p(n)) { __builtin_types_compatible_p(a, b); }",
             "if (__builtin_constant_p(n)) __builtin_types_compatible_p(a, b);",
             "if (__builtin_constant_p(n)) { __builtin_types_compatible_p(a, \"}\n",
             "if (__builtin_constant_p(n)) { __builtin_types_compatible_p(a, b); } else f();",
             "__builtin_constant_p",
             "(__builtin_constant_p",
         }) {
        EXPECT_EQ(Blanked(text), text);
    }
}

} // namespace
} // namespace Orvanta
