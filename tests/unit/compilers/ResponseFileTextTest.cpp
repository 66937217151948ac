#include "compilers/ResponseFileText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvanta {
namespace {

const std::vector<std::string> Words = {"-c", "", "a b", "C:\\dir\\", "-DX=\"y\"", "it's"};

TEST(ResponseFileText, IsQuotedAsTheFamilyReadsIt) {
    EXPECT_EQ(ResponseFileText(CompilerType::Clang, Words), "-c\n\"\"\na\\ b\nC:\\\\dir\\\\\n-DX=\\\"y\\\"\nit\\'s\n");
    EXPECT_EQ(ResponseFileText(CompilerType::Cl, Words),
              "\"-c\"\n\"\"\n\"a b\"\n\"C:\\dir\\\\\"\n\"-DX=\\\"y\\\"\"\n\"it's\"\n");
    EXPECT_EQ(ResponseFileText(CompilerType::ClangCl, std::vector<std::string>{"\xC3\xA4.c"}),
              "\xEF\xBB\xBF\"\xC3\xA4.c\"\n");
    EXPECT_EQ(ResponseFileText(CompilerType::Unknown, Words), std::nullopt);
}

} // namespace
} // namespace Orvanta
