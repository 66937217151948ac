#include "platform/Paths.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Orvanta {
namespace {

using enum PathRules;

struct NormalizeCase {
    PathRules rules;
    std::string_view path;
    std::string_view normal;
};

const NormalizeCase NormalizeCases[] = {
    {Posix, "", ""},
    {Posix, ".", "."},
    {Posix, "a/..", "."},
    {Posix, "./a/./b//c/", "a/b/c"},
    {Posix, "a/b/../../c", "c"},
    {Posix, "../../a/../b", "../../b"},
    {Posix, "a/../../b", "../b"},
    {Posix, "/", "/"},
    {Posix, "//a///b/", "/a/b"},
    {Posix, "/../../a", "/a"},
    {Posix, "/a/..", "/"},
    {Posix, "/a/..b/...", "/a/..b/..."},
    {Posix, R"(C:\a\..)", R"(C:\a\..)"},
    {Windows, R"(a/b\.\..)", "a"},
    {Windows, R"(c:/Users/../x\)", R"(c:\x)"},
    {Windows, R"(C:\..\a)", R"(C:\a)"},
    {Windows, "C:/", R"(C:\)"},
    {Windows, R"(C:a\..\..\b)", R"(C:..\b)"},
    {Windows, R"(\a\..\..\b)", R"(\b)"},
    {Windows, "//server/share/a/../../b", R"(\\server\share\b)"},
    {Windows, R"(\\server\share)", R"(\\server\share\)"},
    {Windows, R"(\\?\C:\a\.\b)", R"(\\?\C:\a\b)"},
};

TEST(NormalizedPath, HasNothingToResolveLeft) {
    for (const NormalizeCase& row : NormalizeCases) {
        EXPECT_EQ(NormalizePath(row.path, row.rules), row.normal) << row.path;
        EXPECT_EQ(NormalizePath(row.normal, row.rules), row.normal) << "a second time changes nothing";
    }
}

struct PartsCase {
    PathRules rules;
    std::string_view path;
    bool isAbsolute;
    std::string_view directory;
    std::string_view stem;
    std::string_view extension;
};

const PartsCase PartsCases[] = {
    {Posix, "", false, "", "", ""},
    {Posix, "a.cpp", false, "", "a", ".cpp"},
    {Posix, "/a", true, "/", "a", ""},
    {Posix, "/", true, "/", "", ""},
    {Posix, "x//a.tar.gz", false, "x", "a.tar", ".gz"},
    {Posix, "/x.y/a", true, "/x.y", "a", ""},
    {Posix, "/x/", true, "/x", "", ""},
    {Posix, "x/.hidden", false, "x", ".hidden", ""},
    {Posix, "x/..", false, "x", "..", ""},
    {Posix, "a.", false, "", "a", "."},
    {Posix, R"(C:\x\a.c)", false, "", R"(C:\x\a)", ".c"},
    {Windows, R"(C:\x\a.c)", true, R"(C:\x)", "a", ".c"},
    {Windows, "C:/a.c", true, "C:/", "a", ".c"},
    {Windows, "C:a.c", false, "C:", "a", ".c"},
    {Windows, R"(\a)", false, R"(\)", "a", ""},
    {Windows, R"(\\server\share\a)", true, R"(\\server\share\)", "a", ""},
    {Windows, R"(\\server\share)", true, R"(\\server\share)", "", ""},
};

TEST(Path, IsTakenApart) {
    for (const PartsCase& row : PartsCases) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(IsAbsolutePath(row.path, row.rules), row.isAbsolute);
        EXPECT_EQ(DirectoryOf(row.path, row.rules), row.directory);
        EXPECT_EQ(StemOf(row.path, row.rules), row.stem);
        EXPECT_EQ(ExtensionOf(row.path, row.rules), row.extension);
        EXPECT_EQ(FileNameOf(row.path, row.rules), std::string(row.stem).append(row.extension));
    }
}

struct JoinCase {
    PathRules rules;
    std::string_view base;
    std::string_view path;
    std::string_view joined;
};

const JoinCase JoinCases[] = {
    {Posix, "/a", "b", "/a/b"},
    {Posix, "/a/", "../b", "/a/../b"},
    {Posix, "/", "b", "/b"},
    {Posix, "", "b", "b"},
    {Posix, "/a", "", "/a"},
    {Posix, "/a", "/b", "/b"},
    {Windows, R"(C:\a)", "b", R"(C:\a\b)"},
    {Windows, R"(C:\a)", "d:/b", "d:/b"},
    {Windows, R"(C:\a)", R"(\b)", R"(C:\b)"},
    {Windows, R"(C:\a)", "c:b", R"(C:\a\b)"},
    {Windows, R"(C:\a)", "D:b", "D:b"},
    {Windows, "C:", "b", "C:b"},
    {Windows, R"(\\s\sh)", "b", R"(\\s\sh\b)"},
    {Windows, R"(\\s\sh)", R"(\b)", R"(\\s\sh\b)"},
};

TEST(Paths, AreJoinedUnlessTheSecondStandsAlone) {
    for (const JoinCase& row : JoinCases) {
        EXPECT_EQ(JoinPath(row.base, row.path, row.rules), row.joined) << row.base << " and " << row.path;
    }
}

TEST(AbsolutePathOf, ARelativePathIsOneOfTheCurrentDirectory) {
    EXPECT_EQ(AbsolutePath("x/../y"), NormalizePath(CurrentDirectory() + "/y"));
    EXPECT_EQ(AbsolutePath(""), NormalizePath(CurrentDirectory()));
}

} // namespace
} // namespace Orvanta
