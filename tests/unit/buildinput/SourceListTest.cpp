#include "buildinput/SourceList.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

TEST(SourceList, NamesOnePathALine) {
    const std::vector<std::string> expected = {AbsolutePath("a b.c"), AbsolutePath("#c.c"), AbsolutePath("/x/y.c"),
                                               AbsolutePath("/x/y.c")};
    EXPECT_EQ(ParseSourceList("\xEF\xBB\xBF\n  a b.c \t\r\n\r\n#c.c\n/x/./z/../y.c\n\n/x//y.c"), expected);
    EXPECT_TRUE(ParseSourceList(" \n\t\r\n").empty());
}

TEST(SourceList, LeavesOutWhatDoesNotExist) {
    const TestFolder folder;
    const std::string source = folder.Write("a.c", "");
    const std::string list = folder.Write("list", "none.c\n" + source + "\n" + folder.Path() + "\n");
    EXPECT_EQ(ReadSourceList(list).paths, std::vector{NormalizePath(source)});
    EXPECT_TRUE(ReadSourceList(folder.Write("blank", "\n \n")).isEmpty);
    const SourceList invalid = ReadSourceList(folder.Write("invalid", folder / "none.c"));
    EXPECT_FALSE(invalid.isEmpty);
    EXPECT_TRUE(invalid.paths.empty());
    EXPECT_THROW((void)ReadSourceList(folder / "none"), ZelmException);
}

} // namespace

} // namespace Orvanta
