#include "buildinput/SourceList.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

TEST(SourceList, NamesOnePathALine) {
    const std::vector<std::string> folders = {HostPath("/w"), HostPath("/root")};
    std::vector<std::vector<std::string>> places;
    for (const ListedFile& file : ParseSourceList(
             "\xEF\xBB\xBF\n  a b.c \t\r\n\r\n#c.c\n" + HostPath("/x/./z/../y.c") + "\n\n../up.h", folders)) {
        places.push_back(file.places);
    }
    EXPECT_EQ(places, (std::vector<std::vector<std::string>>{{HostPath("/w/a b.c"), HostPath("/root/a b.c")},
                                                             {HostPath("/w/#c.c"), HostPath("/root/#c.c")},
                                                             {HostPath("/x/y.c")},
                                                             {HostPath("/up.h"), HostPath("/up.h")}}));
    EXPECT_TRUE(ParseSourceList(" \n\t\r\n", folders).empty());
    const TestFolder folder;
    EXPECT_THROW((void)ReadSourceList(folder / "none", folders), ZelmException);
}

TEST(SourceList, ReadsPathsBetweenQuotesAsGitMeansThem) {
    struct Case {
        const char* line;
        std::vector<std::string> places;
    };

    const Case cases[] = {
        {R"("h\303\251.h")", {HostPath("/w/h\xC3\xA9.h"), HostPath("/w/h") + R"(\303\251.h)"}},
        {R"("a b.c")", {HostPath("/w/a b.c")}},
        {R"("say \"x\".c")", {HostPath("/w/say \"x\".c"), HostPath("/w/say ") + R"(\"x\".c)"}},
        {R"("half)", {HostPath("/w/\"half")}},
        {R"(")", {HostPath("/w/\"")}},
    };
    for (const Case& row : cases) {
        const std::vector<ListedFile> files = ParseSourceList(row.line, std::vector{HostPath("/w")});
        ASSERT_EQ(files.size(), 1U) << row.line;
        EXPECT_EQ(files.front().places.front(), row.places.front()) << row.line;
        EXPECT_EQ(files.front().places.size(), row.places.size()) << row.line;
    }
}

} // namespace

} // namespace Orvanta
