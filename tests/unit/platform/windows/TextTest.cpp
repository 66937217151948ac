#include "platform/windows/WideText.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

TEST(WideText, GoesBothWays) {
    for (const std::string text : {"", "plain", "gr\xC3\xBC\xC3\x9F \xE6\xBA\x90 \xF0\x9F\x98\x80"}) {
        EXPECT_EQ(FromWide(ToWide(text)), text);
    }
    EXPECT_EQ(FromWide(ToWide("a\xFFz")), "a\xEF\xBF\xBDz") << "what is no UTF-8 is replaced";
}

TEST(ActiveCodePage, GivesBackWhatItCanHold) {
    EXPECT_EQ(FromActiveCodePage(ToActiveCodePage("plain").value()), "plain");
    const std::string source = "\xE6\xBA\x90";
    if (const auto narrow = ToActiveCodePage(source)) {
        EXPECT_EQ(FromActiveCodePage(*narrow), source);
    }
}

TEST(WidePath, TakesTheFormWithoutALimitOnlyWhereItMust) {
    const std::string tail(300, 'n');
    EXPECT_EQ(WidePath("C:\\a/b"), L"C:\\a/b");
    EXPECT_EQ(WidePath("C:\\a/../" + tail), L"\\\\?\\C:\\" + ToWide(tail));
    EXPECT_EQ(WidePath("\\\\server\\share\\" + tail), L"\\\\?\\UNC\\server\\share\\" + ToWide(tail));
    EXPECT_EQ(WidePath("\\\\?\\C:\\" + tail), L"\\\\?\\C:\\" + ToWide(tail));
    EXPECT_TRUE(WidePath(tail).starts_with(L"\\\\?\\"));
}

} // namespace
} // namespace Orvanta
