#include "bundled/FileAlias.h"

#include "support/HostPath.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(FileAlias, LeadsBackToItsFile) {
    EXPECT_EQ(KeyOfAlias(AliasOf("/p/a.b/u.cpp")), FileKey("/p/a.b/u.cpp"));
    EXPECT_EQ(AliasOf("/p/u.c\"x"), "f" + std::to_string(FileKey("/p/u.c\"x")));
    for (const char* name : {"", "f", "f.c", "nofile", "/p/f1.c", "f1x.c", "f99999999999999999999.c"}) {
        EXPECT_FALSE(KeyOfAlias(name).has_value()) << name;
    }
}

TEST(FileAlias, TellsPathsApartAsTheSystemDoes) {
    EXPECT_NE(FileKey("/p/a.h"), FileKey("/q/a.h"));
    const bool isOneFile = HostPathRules() == PathRules::Windows;
    EXPECT_EQ(AliasOf("C:\\p\\a.H") == AliasOf("c:\\P\\A.h"), isOneFile);
}

} // namespace
} // namespace Orvanta
