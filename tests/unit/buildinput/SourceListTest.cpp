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

} // namespace

} // namespace Orvanta
