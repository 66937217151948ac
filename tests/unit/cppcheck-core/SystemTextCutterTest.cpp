#include "cppcheck/SystemTextCutter.h"

#include "cppcheck/FileAlias.h"
#include "support/HostPath.h"

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

// The unit is "/p/u.cpp", in "/p".
const CutCase CutCases[] = {
    {"SystemHeaderGoesAndLinesStay",
     "# 1 \"u.cpp\"\n# 1 \"/opt/x/sys.h\" 1 3\nint s;\n# 2 \"/opt/x/sys.h\" 3\nint t;\n# 2 \"u.cpp\" 2\n\n\nint "
     "a;\nint b;\n",                                                                                                                            "# 4 \"f0.cpp\"\nint a;\nint b;\n"                                              },
    {"MacroOfSystemHeaderStaysInUsersLine",
     "# 1 \"u.cpp\"\nif (\n# 1 \"u.cpp\" 3 4\n   __null\n# 1 \"u.cpp\"\n   ) f();\n",                                                           "# 1 \"f0.cpp\"\nif (\n# 1 \"s0.cpp\"\n   __null\n# 1 \"f0.cpp\"\n   ) f();\n"  },
    {"UsersHeaderKeepsFileAndExtension",           "# 1 \"u.cpp\"\n# 1 \"./a.hpp\" 1\nint h;\n# 2 \"u.cpp\" 2\nint a;\n",
     "# 1 \"f1.hpp\"\nint h;\n# 2 \"f0.cpp\"\nint a;\n"                                                                                                                                                                         },
    {"HeaderThatASystemHeaderIncludesFromTheUser",
     "# 1 \"/opt/x/sys.h\" 1 3\nint s;\n# 1 \"/p/config.h\" 1\nint c;\n# 2 \"/opt/x/sys.h\" 2 3\nint t;\n",                                     "# 1 \"f2.h\"\nint c;\n"                                                        },
    {"WindowsSystemFolderInAnyCase",
     "#line 1 \"C:\\\\PROGRAM FILES (x86)\\\\Windows Kits\\\\a.h\"\nint s;\n#line 2 \"u.cpp\"\nint a;\n",                                       "# 2 \"f0.cpp\"\nint a;\n"                                                      },
    {"TextOfNoFileGoes",                           "# 1 \"<built-in>\" 1\nint s;\n# 1 \"<command-line>\" 1\nint t;\n# 1 \"u.cpp\" 2\nint a;\n",
     "# 1 \"f0.cpp\"\nint a;\n"                                                                                                                                                                                                 },
    {"WorkingDirectoryIsNoFile",                   "# 1 \"u.cpp\"\n# 1 \"/p//\"\nint a;\n",                                                     "# 1 \"f0.cpp\"\nint a;\n"                                                      },
    {"GeneratedCodeBelongsToItsOrigin",            "# 1 \"u.cpp\"\nint a;\n# 30 \"grammar.y\"\nint g;\n# 3 \"u.cpp\"\nint b;\n",
     "# 1 \"f0.cpp\"\nint a;\n# 30 \"f1.y\"\nint g;\n# 3 \"f0.cpp\"\nint b;\n"                                                                                                                                                  },
    {"MarkerWithoutNameKeepsTheFile",              "# 1 \"a.h\" 1\n#line 8\nint h;\n",                                                          "# 8 \"f1.h\"\nint h;\n"                                                        },
    {"TextWithoutMarkersIsTheSource",              "int a;\nint b;\n",                                                                          "# 1 \"f0.cpp\"\nint a;\nint b;\n"                                              },
    {"CarriageReturns",                            "# 1 \"u.cpp\"\r\n# 1 \"/opt/x/sys.h\" 1 3\r\nint s;\r\n# 2 \"u.cpp\" 2\r\nint a;\r\n",
     "# 2 \"f0.cpp\"\nint a;\n"                                                                                                                                                                                                 },
    {"NoLineEndAtTheEnd",                          "# 5 \"u.cpp\"\nint a;",                                                                     "# 5 \"f0.cpp\"\nint a;\n"                                                      },
    {"MarkerInARawStringIsText",
     "# 1 \"u.cpp\"\nauto a = R\"x(\n# 9 \"/usr/include/a.h\" 1 3\n\")x\"; int b;\n# 1 \"/opt/x/s.h\" 1 3\nint s;\n",                           "# 1 \"f0.cpp\"\nauto a = R\"x(\n# 9 \"/usr/include/a.h\" 1 3\n\")x\"; int b;\n"},
    {"NoRawStringInWordOrLiteral",
     "# 1 \"u.cpp\"\nauto a = 1'0 + FOR\"(\" + \"R\\\"(\" + '\"' + R\"(b)\";\n# 1 \"/opt/x/s.h\" 1 3\nint s;\n",                                "# 1 \"f0.cpp\"\nauto a = 1'0 + FOR\"(\" + \"R\\\"(\" + '\"' + R\"(b)\";\n"     },
    {"Empty",                                      "",                                                                                          ""                                                                              },
};

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

TEST_P(SystemTextCutter, LeavesUsersTextAtItsPlace) {
    EXPECT_EQ(WithNumbersForKeys(CutSystemText(GetParam().text, HostPath("/p/u.cpp"), HostPath("/p"))), GetParam().cut);
}

INSTANTIATE_TEST_SUITE_P(Cases, SystemTextCutter, testing::ValuesIn(CutCases),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace Orvanta
