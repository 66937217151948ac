#include "analysis/CoreLocator.h"

#include "platform/Exceptions.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(LocateCore, PrefersTheCoreBesideTheProgramToTheBundledOne) {
    const TestFolder folder;
    const std::string programs = folder.MakeFolder("bin");
    EXPECT_THROW((void)LocateCore(programs), ZelmException);

    const std::string bundled = folder.Write("lib/orvanta/Orvanta.exe", "");
    EXPECT_EQ(LocateCore(programs).path, bundled);
    EXPECT_EQ(LocateCore(programs).origin, CoreLocation::Origin::Bundled);

    const std::string beside = folder.Write("bin/Orvanta.exe", "");
    EXPECT_EQ(LocateCore(programs).path, beside);
    EXPECT_EQ(LocateCore(programs).origin, CoreLocation::Origin::Installed);
}

} // namespace
} // namespace Orvanta
