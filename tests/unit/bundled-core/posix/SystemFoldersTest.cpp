#include "bundled/FileAlias.h"
#include "bundled/SystemTextCutter.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

TEST(SystemFoldersOnPosix, NeedNoFlag) {
    const std::string text = "#line 1 \"u.cpp\"\n#line 1 \"/usr/include/a.h\"\nint s;\n#line 2 \"u.cpp\"\nint a;\n";
    EXPECT_EQ(CutSystemText(text, "/p/u.cpp", "/p").text, "# 2 \"" + AliasOf("/p/u.cpp") + "\"\nint a;\n");
}

TEST(SystemFoldersOnPosix, MayHoldASourceOfTheUsers) {
    const std::string text = "# 1 \"/usr/lib/x/u.c\"\nint a;\n# 1 \"/usr/include/a.h\"\nint s;\n";
    EXPECT_EQ(CutSystemText(text, "/usr/lib/x/u.c", "/usr/lib/x").text,
              "# 1 \"" + AliasOf("/usr/lib/x/u.c") + "\"\nint a;\n");
}

} // namespace
} // namespace Orvanta
