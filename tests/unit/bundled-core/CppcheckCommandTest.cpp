#include "bundled/CppcheckCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

UnitSettings UnitOf(std::string platform, std::string preprocessor) {
    UnitSettings unit;
    unit.platform = std::move(platform);
    unit.preprocessor = std::move(preprocessor);
    return unit;
}

TEST(CppcheckCommand, PlatformFollowsTheUnit) {
    EXPECT_EQ(CppcheckPlatform(UnitOf("linux64", "gcc")), "unix64");
    EXPECT_EQ(CppcheckPlatform(UnitOf("linux32", "clang")), "unix32");
    EXPECT_EQ(CppcheckPlatform(UnitOf("x64", "visualcpp")), "win64");
    EXPECT_EQ(CppcheckPlatform(UnitOf("Win32", "visualcpp")), "win32W");
    EXPECT_EQ(CppcheckPlatform(UnitOf("brain16", "gcc")), "unspecified");
    UnitSettings linux = UnitOf("linux32", "gcc");
    linux.isPlainCharUnsigned = true;
    EXPECT_EQ(CppcheckPlatform(linux), "unix32-unsigned");
    UnitSettings pic = UnitOf("pic8", "gcc");
    pic.preprocessedPath = "/t/u.i";
    EXPECT_EQ(CppcheckPlatform(pic), "/t/u.i.platform.xml");
}

TEST(CppcheckCommand, UnknownStandardIsLeftToCppcheck) {
    UnitSettings unit = UnitOf("linux64", "gcc");
    unit.language = UnitLanguage::C;
    unit.standard = "c17";
    EXPECT_THAT(CppcheckCommand("cppcheck", unit, "/t/u.i.cut.c"),
                AllOf(Contains("--language=c"), Contains("--std=c11"), Contains("/t/u.i.cut.c")));
    for (const char* standard : {"", "c2y"}) {
        unit.standard = standard;
        EXPECT_THAT(CppcheckCommand("cppcheck", unit, "/t/u.i.cut.c"), Not(Contains(StartsWith("--std"))));
    }
}

} // namespace
} // namespace Orvanta
