#include "bundled/ClangText.h"

#include "bundled/ClangCommand.h"
#include "bundled/ClangOutput.h"
#include "support/HostPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(ClangText, KeepsEachLineAndItsPlace) {
    const std::string source = HostPath("/p/u.cpp");
    const ClangText text = MakeClangText("# 1 \"/opt/s.h\" 1 3\n"
                                         "typedef float _Float32; int s;\n"
                                         "# 7 \"" +
                                             source +
                                             "\" 2\n"
                                             "int *p =\n"
                                             "# 7 \"" +
                                             source +
                                             "\" 3 4\n"
                                             "  __null\n"
                                             "# 7 \"" +
                                             source +
                                             "\"\n"
                                             "  ;\n"
                                             "// typedef float _Float32;\n",
                                         source, HostPath("/p"));
    EXPECT_EQ(text.text, "# 1 \"system\" 1 3\n"
                         " int s;\n"
                         "# 1 \"unit\" 2\n"
                         "int *p =\n"
                         "# 1 \"unit\" 3\n"
                         "  __null\n"
                         "# 1 \"unit\"\n"
                         "  ;\n"
                         "// typedef float _Float32;\n");
    EXPECT_EQ(text.PlaceOf(4).line, 7U);
    EXPECT_EQ(text.PlaceOf(8).line, 7U);
    EXPECT_EQ(text.PlaceOf(9).line, 8U);
    EXPECT_EQ(text.PlaceOf(99).line, 1U);
}

TEST(ClangText, KnowsNoAtomicTypes) {
    EXPECT_EQ(
        MakeClangText("typedef _Atomic int a; _Atomic(int) b; int c_Atomic, _Atomics; int* _Atomic", "/u.c", "/").text,
        "typedef         int a; _Atomic(int) b; int c_Atomic, _Atomics; int*        \n");
}

TEST(ClangOutput, HoldsDiagnosticsWithTheirSteps) {
    const ClangOutput output = ReadClangOutput("C:/t/u.cpp:4:12: warning: null 'p' [a-b,c.D,-warnings-as-errors]\n"
                                               "    return *p;\n"
                                               "C:/t/u.cpp:2:5: note: 'p' is null\n"
                                               "C:/t/u.cpp: no place\n"
                                               "C:/t/u.cpp:9:1: warning: text [in brackets]: end [e]\r\n",
                                               "C:/t/u.cpp");
    const ClangDiagnostic null = {{4, 12, "null 'p'"}, {"a-b", "c.D"}, {{2, 5, "'p' is null"}}};
    const ClangDiagnostic other = {{9, 1, "text [in brackets]: end"}, {"e"}, {}};
    EXPECT_THAT(output.diagnostics, ElementsAre(null, other));
    EXPECT_EQ(output.error, "");
    for (const char* const line : {"/u.c:4:1: error: unknown type name 'x' [clang-diagnostic-error]\n",
                                   "error: unknown type name 'x' [clang-diagnostic-error]\n"}) {
        EXPECT_EQ(ReadClangOutput(line, "/u.c").error, "unknown type name 'x'");
    }
}

TEST(ClangCommand, FollowsTheUnitAndTheChoice) {
    UnitSettings unit;
    unit.language = UnitLanguage::C;
    unit.standard = "c11";
    unit.platform = "arm";
    unit.isPlainCharUnsigned = true;
    EXPECT_THAT(ClangCommand("clang-tidy", unit, "/t/u.c"),
                AllOf(Contains("-std=gnu11"), Contains("--target=armv7-none-eabi"), Contains("-funsigned-char"),
                      Contains(AllOf(StartsWith("--checks=-*,"), HasSubstr(",bugprone-use-after-move,"),
                                     Not(HasSubstr("cert-dcl51-cpp")))),
                      Contains(StartsWith("max-nodes="))));
    unit.isDeep = true;
    unit.choice = {8, false};
    unit.preprocessor = "visualcpp";
    unit.platform = "x64";
    EXPECT_THAT(ClangCommand("clang-tidy", unit, "/t/u.c"),
                AllOf(Contains("-std=c11"), Contains("--target=x86_64-pc-windows-msvc"),
                      Contains(AllOf(HasSubstr("clang-diagnostic-pessimizing-move"), Not(HasSubstr("bugprone-")))),
                      Not(Contains(StartsWith("max-nodes=")))));
    EXPECT_FALSE(HasClangChecks({32, true}));
}

} // namespace
} // namespace Orvanta
