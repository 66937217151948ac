#include "bundled/SystemTextCutter.h"

#include "bundled/FileAlias.h"
#include "support/HostPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace Orvanta {
namespace {

struct CutCase {
    const char* name;
    const char* text;
    const char* cut;
};

void PrintTo(const CutCase& row, std::ostream* stream) {
    *stream << row.name;
}

// The unit is "/p/u.cpp", in "/p". Texts begin below their first line break.
// clang-format off
const CutCase CutCases[] = {
    {"SystemHeaderGoesAndLinesStay", R"x(
# 1 "u.cpp"
# 1 "/opt/x/sys.h" 1 3
int s;
# 2 "/opt/x/sys.h" 3
int t;
# 2 "u.cpp" 2


int a;
int b;
)x", R"x(
# 4 "f0.cpp"
int a;
int b;
)x"},
    {"MacroOfSystemHeaderStaysInUsersLine", R"x(
# 1 "u.cpp"
if (
# 1 "u.cpp" 3 4
   __null
# 1 "u.cpp"
   ) f();
)x", R"x(
# 1 "f0.cpp"
if ( __null ) f();
)x"},
    {"BackwardsIsAJumpOutsideOfThem", R"x(
# 9 "u.cpp"
do {
# 7 "u.cpp"
f();
# 9 "u.cpp"
} while (0);
)x", R"x(
# 9 "f0.cpp"
do {
# 7 "f0.cpp"
f();

} while (0);
)x"},
    {"PragmasShareNoLineAndStandInNoCall", R"x(
# 1 "u.cpp"
int a;
# 1 "u.cpp" 3
#pragma x
# 1 "u.cpp"
int b = f(
#pragma y
# 1 "u.cpp"
);
)x", R"x(
# 1 "f0.cpp"
int a;
# 1 "f0.cpp"
#pragma x
# 1 "f0.cpp"
int b = f( );
)x"},
    {"UsersHeaderKeepsFileAndExtension", R"x(
# 1 "u.cpp"
# 1 "./a.hpp" 1
int h;
# 2 "u.cpp" 2
int a;
)x", R"x(
# 1 "f1.hpp"
int h;
# 2 "f0.cpp"
int a;
)x"},
    {"HeaderThatASystemHeaderIncludesFromTheUser", R"x(
# 1 "/opt/x/sys.h" 1 3
int s;
# 1 "/p/config.h" 1
int c;
# 2 "/opt/x/sys.h" 2 3
int t;
)x", R"x(
# 1 "f2.h"
int c;
)x"},
    {"WindowsSystemFolderInAnyCase", R"x(
#line 1 "C:\\PROGRAM FILES (x86)\\Windows Kits\\a.h"
int s;
#line 2 "u.cpp"
int a;
)x", R"x(
# 2 "f0.cpp"
int a;
)x"},
    {"TextOfNoFileGoes", R"x(
# 1 "<built-in>" 1
int s;
# 1 "<command-line>" 1
int t;
# 1 "u.cpp" 2
int a;
)x", R"x(
# 1 "f0.cpp"
int a;
)x"},
    {"WorkingDirectoryIsNoFile", R"x(
# 1 "u.cpp"
# 1 "/p//"
int a;
)x", R"x(
# 1 "f0.cpp"
int a;
)x"},
    {"GeneratedCodeBelongsToItsOrigin", R"x(
# 1 "u.cpp"
int a;
# 30 "grammar.y"
int g;
# 3 "u.cpp"
int b;
)x", R"x(
# 1 "f0.cpp"
int a;
# 30 "f1.y"
int g;
# 3 "f0.cpp"
int b;
)x"},
    {"MarkerWithoutNameKeepsTheFile", R"x(
# 1 "a.h" 1
#line 8
int h;
)x", R"x(
# 8 "f1.h"
int h;
)x"},
    {"TextWithoutMarkersIsTheSource", R"x(
int a;
int b;
)x", R"x(
# 1 "f0.cpp"
int a;
int b;
)x"},
    {"MarkerInARawStringIsText", R"x(
# 1 "u.cpp"
auto a = R"y(

# 9 "/usr/include/a.h" 1 3
)y"; int b;
# 1 "/opt/x/s.h" 1 3
int s;
)x", R"x(
# 1 "f0.cpp"
auto a = R"y(

# 9 "/usr/include/a.h" 1 3
)y"; int b;
)x"},
    {"NoRawStringInWordOrLiteral", R"x(
# 1 "u.cpp"
auto a = 1'0 + FOR"(" + "R\"(" + '"' + R"(b)";
# 1 "/opt/x/s.h" 1 3
int s;
)x", R"x(
# 1 "f0.cpp"
auto a = 1'0 + FOR"(" + "R\"(" + '"' + R"(b)";
)x"},
    {"Empty", "\n", "\n"},
};

// clang-format on

class SystemTextCutter : public testing::TestWithParam<CutCase> {};

// The rows number the files of a unit; their keys are not for readers.
std::string WithNumbersForKeys(CutText cut) {
    for (std::size_t i = 0; i < cut.files.size(); ++i) {
        const std::string key = std::to_string(FileKey(cut.files[i].path));
        for (std::size_t at = cut.text.find(key); at != std::string::npos; at = cut.text.find(key, at)) {
            cut.text.replace(at, key.size(), std::to_string(i));
        }
    }
    return cut.text;
}

CutText Cut(const std::string& text) {
    return CutSystemText(text, HostPath("/p/u.cpp"), HostPath("/p"));
}

TEST_P(SystemTextCutter, LeavesUsersTextAtItsPlace) {
    EXPECT_EQ(WithNumbersForKeys(Cut(GetParam().text + 1)), GetParam().cut + 1);
}

INSTANTIATE_TEST_SUITE_P(Cases, SystemTextCutter, testing::ValuesIn(CutCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CutText, KeepsFarLinesApartBetweenParenthesesAndTellsTheTextOfSystemMacros) {
    const CutText cut = Cut("# 3 \"u.cpp\"\r\n__assert_fail(\"(\", ')', f(\r\n# 20 \"u.cpp\"\r\n b\r\n"
                            "# 3 \"u.cpp\" 3 4\r\n  ), 1)\r\n# 21 \"u.cpp\"\r\n;");
    EXPECT_EQ(WithNumbersForKeys(cut),
              "# 3 \"f0.cpp\"\n__assert_fail(\"(\", ')', f(" + std::string(17, '\n') + " b ), 1)\n;\n");
    EXPECT_THAT(cut.systemMacros, testing::ElementsAre(SystemMacroText{0, 20, 4, 9}));
}

} // namespace
} // namespace Orvanta
