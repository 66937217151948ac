#include "platform/Files.h"
#include "unit/bundled-core/CoreRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

using testing::HasSubstr;

using OrvlogConverter::ReportMessage;

class CoreWithCppcheck : public Core {
protected:
    // A program that is found as Cppcheck.
    Environment WithCppcheck(const std::string& script) {
        const std::string program = folder_.Write("fake/cppcheck", "#!/bin/sh\n" + script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return {{"PATH", folder_ / "fake:/usr/bin:/bin"}};
    }
};

TEST_F(CoreWithCppcheck, FindsFaultsAtTheirPlacesOutsideOfSystemHeaders) {
    folder_.Write("pro ject \303\244/u.cpp", "#include <sys.h>\n\nint f() {\n    return *p;\n}\n");
    const CoreEnd end = Run(WriteUnit(Faulty));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_EQ(end.standardOutput, "");
    const std::vector<ReportMessage> findings = Findings();
    ASSERT_EQ(findings.size(), 2U) << folder_.Read(Fragment);
    EXPECT_EQ(findings[0].positions[0].file, project_ + "/in c.h");
    EXPECT_EQ(findings[0].positions[0].line, 3U);
    EXPECT_THAT(findings[0].message, HasSubstr("[arrayIndexOutOfBounds] "));
    EXPECT_EQ(findings[1].positions[0].file, project_ + "/u.cpp");
    EXPECT_EQ(findings[1].positions[0].line, 4U);
    EXPECT_EQ(findings[1].positions[0].currLine, "    return *p;");
    EXPECT_EQ(findings[1].message, "[nullPointer] Null pointer dereference: p");
    EXPECT_EQ(findings[1].code, "External");
    EXPECT_EQ(findings[1].level, 1U);
    EXPECT_EQ(findings[1].cwe, 476U);
}

TEST_F(CoreWithCppcheck, WritesRawLinesWhenAskedTo) {
    const CoreEnd end = Run(WriteUnit(Faulty, "new-output-format=no\n"));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_THAT(folder_.Read(Fragment), testing::StartsWith("Zelm64-EM<#~>full<#~>3<#~>" + project_ + "/in c.h<#~>"));
}

TEST_F(CoreWithCppcheck, UnitWithoutFindingsLeavesAnEmptyFragmentAndNothingElse) {
    folder_.Write(Fragment, "from before");
    const CoreEnd end = Run(WriteUnit("# 1 \"u.cpp\"\nint a;\n"));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_EQ(folder_.Read(Fragment), "");
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/u.i.cut.cpp"));
}

TEST_F(CoreWithCppcheck, UnitThatCppcheckCantReadFailsWithTheReason) {
    const CoreEnd end = Run(WriteUnit("# 7 \"u.cpp\"\nint f( {\n"));
    EXPECT_NE(end.exitCode, 0);
    EXPECT_THAT(end.standardError, HasSubstr(project_ + "/u.cpp, line 7: [syntaxError]"));
    EXPECT_FALSE(PathExists(folder_ / Fragment));
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/u.i.cut.cpp"));
}

TEST_F(CoreWithCppcheck, FailsWhenCppcheckFails) {
    for (const char* script : {"echo 'no such library' >&2; exit 1\n", "echo 'no such library'; kill -9 $$\n"}) {
        const CoreEnd end = Run(WriteUnit(Faulty), WithCppcheck(script));
        EXPECT_NE(end.exitCode, 0);
        EXPECT_THAT(end.standardError, testing::MatchesRegex("Cppcheck ended with code [0-9]+: no such library\n"));
    }
}

TEST_F(CoreWithCppcheck, TellsWhatStandsBehindItAndWhatIsMissing) {
    const auto ask = [&](const std::string& script) {
        WithCppcheck(script);
        const CoreEnd end = RunWith({"--version"}, {{"PATH", folder_ / "fake"}});
        EXPECT_EQ(end.exitCode, 0) << end.standardError;
        return end.standardOutput;
    };
    const std::string one = ask("echo Cppcheck 9.1\n");
    EXPECT_THAT(one, testing::MatchesRegex("Cppcheck 9\\.1, .*/fake/cppcheck, [0-9]+\nIt can run Cppcheck 9.1\n"
                                           "clang-tidy is not installed and finds nothing: install the package "
                                           "\"clang-tidy\"\n"));
    EXPECT_NE(ask("echo Cppcheck 9.1 # built anew\n"), one);
}

// One fault that both find, then what one of them can't read.
TEST_F(CoreWithCppcheck, IsOneEngineOfTwo) {
    const std::string fault = "# 1 \"u.cpp\"\nint f() {\n  int* p = 0;\n  return *p; }\n";

    struct {
        const char* text;
        const char* told;
        const char* message;
    } const cases[] = {
        {"", "", "[nullPointer] Null pointer dereference: p (clang-analyzer-core.NullDereference)"},
        {"typedef _Atomic int T; _Atomic(int) n; T m; int g() { return __atomic_load_n(&n, 5) + __atomic_load_n(&m, "
         "5); }\n"
         "extern \"C\" void exit(int); void h() { ::exit(1); }\n",
         "", "[nullPointer] Null pointer dereference: p (clang-analyzer-core.NullDereference)"},
        {"int n = no;\n", "clang-tidy can't read\t/u.cpp: use of undeclared identifier 'no'",
         "[nullPointer] Null pointer dereference: p"},
    };

    for (const auto& row : cases) {
        const CoreEnd end = Run(WriteUnit(fault + row.text, "engines=cppcheck,clang\n"));
        ASSERT_EQ(end.exitCode, 0) << end.standardError;
        std::string told = end.standardOutput;
        if (const std::size_t at = told.find(project_); at != std::string::npos) {
            told.replace(at, project_.size(), "");
        }
        EXPECT_THAT(told, HasSubstr(row.told));
        ASSERT_EQ(Findings().size(), 1U) << folder_.Read(Fragment);
        EXPECT_EQ(Findings()[0].message, row.message);
        EXPECT_EQ(Findings()[0].positions[0].line, 3U);
    }
}

TEST_F(CoreWithCppcheck, IsNotAskedForListsThatItNeverEndsWith) {
    std::string text = "# 1 \"u.cpp\"\nconst int table[] = {0";
    for (int i = 0; i < 20'000; ++i) {
        text += ", 7";
    }
    const CoreEnd end = Run(WriteUnit(text + "};\n"), WithCppcheck("exit 3\n"));
    EXPECT_EQ(end.standardError, "Cppcheck can't read this unit: a list of 20001 elements, more than 20000\n");
}

// The same code is right on one target and wrong on the other, to both engines.
TEST_F(CoreWithCppcheck, AsksBothEnginesForTheUnitsTarget) {
    const std::string text = "# 1 \"u.cpp\"\nint f() { return 1 << 20; }\n";
    for (const char* const engine : {"cppcheck", "clang"}) {
        if (!PathExists("/usr/bin/clang-tidy") && engine == std::string("clang")) {
            continue;
        }
        for (const char* const platform : {"linux32", "arm", "pic8", "msp430"}) {
            const CoreEnd end =
                Run(WriteUnit(text, "engines=" + std::string(engine) + "\nplatform=" + platform + "\n"));
            ASSERT_EQ(end.exitCode, 0) << end.standardError;
            const bool hasSmallInts = platform == std::string("pic8") || platform == std::string("msp430");
            EXPECT_EQ(Findings().size(), hasSmallInts ? 1U : 0U) << engine << ' ' << platform << folder_.Read(Fragment);
        }
    }
    EXPECT_THAT(Run(WriteUnit(text, "platform=brain16\n")).standardOutput, HasSubstr("for this machine\tbrain16\n"));
}

// The system's text breaks a rule as well, and the marker of the user's would break one about directives.
TEST_F(CoreWithCppcheck, JudgesTheRulesOfMisraInTheUsersText) {
    const std::string text =
        "# 1 \"/usr/include/s.h\" 1 3\n"
        "static int s(int a) { if (a > 1) goto end; a = 2; end: return a; }\n"
        "# 1 \"u.cpp\" 2\n"
        "static int f(int a) {\n  if (a > 1) {\n    goto end;\n  }\n  a = 2;\nend:\n  return a;\n}\n";
    const std::string settings = "analysis-mode=160\nlanguage=C\nstd=c11\n";
    const CoreEnd end = Run(WriteUnit(text, settings));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_THAT(end.standardOutput, HasSubstr("<}tally{>Rules of MISRA C:2012 that were judged, and no others: 1.4, "));
    EXPECT_THAT(end.standardOutput, HasSubstr("has checks of the group OWASP\n"));
    std::string found;
    for (const ReportMessage& finding : Findings()) {
        EXPECT_EQ(finding.level, 3U);
        found += finding.sastId + ":" + std::to_string(finding.positions[0].line) + " ";
    }
    EXPECT_EQ(found, "MISRA-C-15.1:3 MISRA-C-17.8:5 ");
}

TEST_F(CoreWithCppcheck, CppcheckEndsWithTheCoresProcessGroup) {
    // The fifth word of these files is the process group.
    const std::string groups = folder_ / "groups";
    const CoreEnd end = Run(WriteUnit(Faulty), WithCppcheck("for pid in $$ $PPID; do cut -d ' ' -f 5 /proc/$pid/stat; "
                                                            "done > '" +
                                                            groups + "'\n"));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    std::istringstream text(folder_.Read("groups"));
    std::string cppcheckGroup;
    std::string coreGroup;
    text >> cppcheckGroup >> coreGroup;
    EXPECT_NE(coreGroup, "");
    EXPECT_EQ(cppcheckGroup, coreGroup);
}

} // namespace
} // namespace Orvanta
