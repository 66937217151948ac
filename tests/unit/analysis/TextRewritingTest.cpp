// Guards against a replay bundle whose text is another program than the one that failed, or that still tells whose it
// is.

#include "analysis/TextRewriting.h"

#include "analysis/PathScrubber.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

TEST(TextRewriting, IsRewrittenWhereItMayBeAndNowhereElse) {
    TextRewriting rewriting;
    rewriting.fileName = [](std::string_view name) {
        return "<" + std::string(name) + ">";
    };
    rewriting.literal = [](std::string_view literal) {
        return "[" + std::string(literal) + "]";
    };
    rewriting.blanksComments = true;

    struct Case {
        const char* text;
        const char* rewritten;
    };

    const Case cases[] = {
        {"# 1 \"a b.c\" 1 3\nint a;\n", "# 1 \"<a b.c>\" 1 3\nint a;\n"},
        {"#line 12 \"d\\\\a.c\"\n  # 3\n#pragma x\n", "#line 12 \"<d\\\\a.c>\"\n  # 3\n#pragma x\n"},
        {"f(\"x\\\"y\", L\"\");", "f(\"[x\\\"y]\", L\"[]\");"},
        {"R\"d(# 1 \"a\"\n)\" \")d\";\n# 2 \"b\"\n", "R\"d([# 1 \"a\"\n)\" \"])d\";\n# 2 \"<b>\"\n"},
        {"a/b; // c \\\n d\nx /* y\r\n z */ '\"' /", "a/b; //   \\\n  \nx /*  \r\n   */ '\"' /"},
        {"1'000'0 + u'\"' + '\\'' \"s\"", "1'000'0 + u'\"' + '\\'' \"[s]\""},
        {"int a; /* open", "int a; /* open"},
        {"char *s = \"open\nint b; \"t\"", "char *s = \"open\nint b; \"[t]\""},
        {"R\"(open", "R\"(open"},
    };
    for (const auto& [text, rewritten] : cases) {
        EXPECT_EQ(RewritePreprocessedText(text, rewriting), rewritten);
        EXPECT_EQ(RewritePreprocessedText(text, {}), text);
    }
}

TEST(PathScrubber, GivesOneNameOneWordAndKeepsTheSystemsOwn) {
    PathScrubber scrubber;
    const std::string source = scrubber.Path("/home/me/secret game/a.cpp");
    EXPECT_EQ(source, "/n1/n2/n3/n4.cpp");
    EXPECT_EQ(scrubber.Path("a.cpp"), "n4.cpp");
    EXPECT_EQ(scrubber.Path("/usr/include/stdio.h"), "/usr/include/stdio.h");
    EXPECT_EQ(scrubber.Path("C:\\home\\b.h"), "C:\\n1\\n5.h");
    EXPECT_EQ(scrubber.Words("a.cpp:3: error in ../me/b.h, see \"c\"."), "n4.cpp:3: error in ../n2/n5.h, see \"c\".");
    EXPECT_EQ(scrubber.KnownPaths("/home/me/secret game/a.cpp"), source);
    EXPECT_EQ(scrubber.KnownPaths("text/html, /%s, x/y"), "text/html, /%s, x/y");
    EXPECT_EQ(scrubber.Argument("-I../me"), "-I../n2");
    EXPECT_EQ(scrubber.Argument("-DROOT=\"/home/me\""), "-DROOT=\"/n1/n2\"");
    EXPECT_EQ(scrubber.Argument("-std=c++17"), "-std=c++17");
    EXPECT_EQ(scrubber.Argument("c++"), "c++");
}

} // namespace

} // namespace Orvanta
