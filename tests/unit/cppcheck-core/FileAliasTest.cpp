#include "cppcheck/FileAlias.h"

#include "support/HostPath.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(FileAlias, LeadsBackToItsFile) {
    const AliasedFile written = {FileKey("/p/a.b/u.cpp"), TextOrigin::File};
    const AliasedFile expanded = {FileKey("/p/u"), TextOrigin::SystemMacro};
    EXPECT_EQ(ReadAlias(AliasOf("/p/a.b/u.cpp", TextOrigin::File)), written);
    EXPECT_EQ(ReadAlias(AliasOf("/p/u", TextOrigin::SystemMacro)), expanded);
    EXPECT_EQ(AliasOf("/p/u.c\"x", TextOrigin::File), "f" + std::to_string(FileKey("/p/u.c\"x")));
    for (const char* name : {"", "f", "s.c", "nofile", "/p/f1.c", "f1x.c", "f99999999999999999999.c"}) {
        EXPECT_FALSE(ReadAlias(name).has_value()) << name;
    }
}

TEST(FileAlias, TellsPathsApartAsTheSystemDoes) {
    EXPECT_NE(FileKey("/p/a.h"), FileKey("/q/a.h"));
    const bool isOneFile = HostPathRules() == PathRules::Windows;
    EXPECT_EQ(AliasOf("C:\\p\\a.H", TextOrigin::File) == AliasOf("c:\\P\\A.h", TextOrigin::File), isOneFile);
}

} // namespace
} // namespace Orvanta
