#include "cache/RootMark.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

Digest DigestOfText(const char* root, const std::string& text, PathRules rules = PathRules::Posix) {
    DigestBuilder builder;
    RootMark(root, rules).AddText(builder, text);
    return builder.Value();
}

TEST(RootMarkTest, TextsDifferByTheRootAlone) {
    const std::string text = "# 1 \"/a/x.c\"\nconst char* f = \"/a\";\n";
    const Digest digest = DigestOfText("/a", text);
    EXPECT_EQ(digest, DigestOfText("/other/b", "# 1 \"/other/b/x.c\"\nconst char* f = \"/other/b\";\n"));
    EXPECT_EQ(digest, DigestOfText("/a/", text));
    for (const char* const other : {
             "# 1 \"/a2/x.c\"\nconst char* f = \"/a\";\n", // another folder
             "# 1 \"/a/x.c\"\nconst char* f = \" /a\";\n", // not at the beginning of a literal
             "# 1 \"\x01/x.c\"\nconst char* f = \"\x01\";\n",
             "# 1 \"/a/x.c\"\nconst char* f = \"/a\"; /a",
         }) {
        EXPECT_NE(digest, DigestOfText("/a", other)) << other;
    }
    EXPECT_NE(DigestOfText("", text), DigestOfText("", "# 1 \"/b/x.c\"\nconst char* f = \"/b\";\n"));
    EXPECT_EQ(DigestOfText("C:\\a", "#line 1 \"C:\\\\a\\\\x.c\"", PathRules::Windows),
              DigestOfText("D:\\b", "#line 1 \"D:\\\\b\\\\x.c\"", PathRules::Windows));
}

TEST(RootMarkTest, FindingsComeBackWithAnotherRoot) {
    OrvlogConverter::ReportMessage message;
    message.message = "'/a/b.h' and '/ab' differ, see /a";
    message.positions.resize(2);
    message.positions[0].file = "/a/x.c";
    message.positions[1].file = "/usr/include/x.h";
    ASSERT_TRUE(RootMark("/a", PathRules::Posix).Mark(message));
    EXPECT_FALSE(RootMark("/a", PathRules::Posix).Mark(message)) << "two meanings of one mark";
    RootMark("/new/r", PathRules::Posix).Unmark(message);
    EXPECT_EQ(message.message, "'/new/r/b.h' and '/ab' differ, see /new/r");
    EXPECT_EQ(message.positions[0].file, "/new/r/x.c");
    EXPECT_EQ(message.positions[1].file, "/usr/include/x.h");
    std::string path = "c:/A/x.c";
    RootMark("C:\\a", PathRules::Windows).MarkPath(path);
    RootMark("D:\\b", PathRules::Windows).Unmark(path);
    EXPECT_EQ(path, "D:\\b/x.c");
}

} // namespace
} // namespace Orvanta
