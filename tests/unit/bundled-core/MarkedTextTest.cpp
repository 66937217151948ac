#include "bundled/MarkedText.h"

#include "support/HostPath.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::ElementsAre;

TEST(ListDependencies, NamesEachFileOnceInOrderOfAppearance) {
    const char* const text = "# 0 \"src/../u.cpp\"\n"
                             "# 0 \"<built-in>\"\n"
                             "# 0 \"<command-line>\"\n"
                             "# 1 \"/work dir//\"\n"
                             "# 1 \"/usr/include/stdc-predef.h\" 1 3 4\n"
                             "# 0 \"<command-line>\" 2\n"
                             "# 1 \"u.cpp\"\n"
                             "# 1 \"/usr/bin/../include/b.h\" 1 3\n"
                             "int b;\n"
                             "# 2 \"u.cpp\" 2\n"
                             "# 1 \"./a.h\" 1\n"
                             "# 3 \"u.cpp\" 2\n"
                             "# 1 \"/usr/include/b.h\" 1 3\n";
    EXPECT_THAT(ListDependencies(text, HostPath("/p/u.cpp"), HostPath("/p")),
                ElementsAre(HostPath("/p/u.cpp"), HostPath("/usr/include/stdc-predef.h"), HostPath("/usr/include/b.h"),
                            HostPath("/p/a.h")));
}

TEST(ListDependencies, FindsANameThatIsRelativeToTheFileThatHoldsIt) {
    const TestFolder folder;
    folder.Write("sub/grammar.y", "");
    folder.Write("both.y", "");
    folder.Write("sub/both.y", "");
    const char* const text = "# 1 \"sub/u.c\"\n#line 7 \"grammar.y\"\nint g;\n#line 2 \"both.y\"\nint b;\n";
    EXPECT_THAT(ListDependencies(text, folder / "sub/u.c", folder.Path()),
                ElementsAre(folder / "sub/u.c", folder / "sub/grammar.y", folder / "both.y"));
}

TEST(ListDependencies, WithoutMarkersThereAreNone) {
    EXPECT_THAT(ListDependencies("int a;\n", "/p/u.cpp", "/p"), ElementsAre());
}

} // namespace
} // namespace Orvanta
