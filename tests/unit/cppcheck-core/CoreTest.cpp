#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Process.h"
#include "report/MessageLine.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

using OrvlogConverter::ReportMessage;
using testing::HasSubstr;

struct CoreEnd {
    int exitCode = 0;
    std::string standardOutput;
    std::string standardError;
};

// The built core, run as the driver runs it, in a project with blanks and a letter outside of ASCII in its path.
class Core : public testing::Test {
protected:
    // A unit of the given preprocessed text; settings that stand twice are those given.
    std::string WriteUnit(const std::string& text, const std::string& moreSettings = "") {
        folder_.Write("temp \303\244/u.i", text);
        return folder_.Write("temp \303\244/u.cfg", "analysis-mode=4\ni-file=" + (folder_ / "temp \303\244/u.i") +
                                                        "\nlanguage=C++\noutput-file=" + (folder_ / Fragment) +
                                                        "\nplatform=linux64\npreprocessor=gcc\nsource-file=u.cpp\n"
                                                        "std=c++17\n" +
                                                        moreSettings);
    }

    CoreEnd Run(const std::string& settings, const Environment& changes = {}, const Arguments& moreArguments = {}) {
        Arguments command = {ORVANTA_CORE_PATH, "--cfg", settings};
        command.insert(command.end(), moreArguments.begin(), moreArguments.end());
        CoreEnd end;
        Process process(command, project_, EnvironmentBlock(WithChanges(changes)),
                        MakeRedirectToStringProcessor(end.standardOutput),
                        MakeRedirectToStringProcessor(end.standardError));
        end.exitCode = process.get_exit_status();
        return end;
    }

    // A program that is found as Cppcheck.
    Environment WithCppcheck(const std::string& script) {
        const std::string program = folder_.Write("fake/cppcheck", "#!/bin/sh\n" + script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return {
            {"PATH", folder_ / "fake:/usr/bin:/bin"}
        };
    }

    std::vector<ReportMessage> Findings() {
        std::vector<ReportMessage> findings;
        std::istringstream lines(folder_.Read(Fragment));
        for (std::string line; std::getline(lines, line);) {
            findings.push_back(OrvlogConverter::ReadMessageLine(line));
        }
        return findings;
    }

    static constexpr const char* Fragment = "temp \303\244/u.findings";
    TestFolder folder_;
    std::string project_ = folder_.MakeFolder("pro ject \303\244");
};

constexpr const char* Faulty = "# 0 \"u.cpp\"\n"
                               "# 1 \"/opt/x/sys.h\" 1 3\n"
                               "template <class concept X> struct { ;\n"
                               "# 1 \"u.cpp\" 2\n"
                               "# 1 \"in c.h\" 1\n"
                               "int g() {\n"
                               "    const int array[2] = {0, 0};\n"
                               "    return array[2];\n"
                               "}\n"
                               "# 2 \"u.cpp\" 2\n"
                               "int f() {\n"
                               "    int* p = \n"
                               "# 3 \"u.cpp\" 3 4\n"
                               "            __null\n"
                               "# 3 \"u.cpp\"\n"
                               "                ;\n"
                               "    return *p;\n"
                               "}\n";

TEST_F(Core, FindsFaultsAtTheirPlacesOutsideOfSystemHeaders) {
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

TEST_F(Core, WritesRawLinesWhenAskedTo) {
    const CoreEnd end = Run(WriteUnit(Faulty, "new-output-format=no\n"));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_THAT(folder_.Read(Fragment), testing::StartsWith("Zelm64-EM<#~>full<#~>3<#~>" + project_ + "/in c.h<#~>"));
}

TEST_F(Core, UnitWithoutFindingsLeavesAnEmptyFragmentAndNothingElse) {
    folder_.Write(Fragment, "from before");
    const CoreEnd end = Run(WriteUnit("# 1 \"u.cpp\"\nint a;\n"));
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_EQ(folder_.Read(Fragment), "");
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/u.i.cut.cpp"));
}

TEST_F(Core, UnitThatCppcheckCantReadFailsWithTheReason) {
    const CoreEnd end = Run(WriteUnit("# 7 \"u.cpp\"\nint f( {\n"));
    EXPECT_NE(end.exitCode, 0);
    EXPECT_THAT(end.standardError, HasSubstr(project_ + "/u.cpp, line 7: [syntaxError]"));
    EXPECT_FALSE(PathExists(folder_ / Fragment));
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/u.i.cut.cpp"));
}

TEST_F(Core, SaysThatCppcheckIsMissing) {
    const CoreEnd end = Run(WriteUnit(Faulty), {
                                                   {"PATH", folder_.Path()}
    });
    EXPECT_NE(end.exitCode, 0);
    EXPECT_EQ(end.standardError, "Cppcheck was not found along PATH: install the package \"cppcheck\", or name another "
                                 "core with --orvanta-path\n");
}

TEST_F(Core, FailsWhenCppcheckFails) {
    for (const char* script : {"echo 'no such library' >&2; exit 1\n", "echo 'no such library'; kill -9 $$\n"}) {
        const CoreEnd end = Run(WriteUnit(Faulty), WithCppcheck(script));
        EXPECT_NE(end.exitCode, 0);
        EXPECT_THAT(end.standardError, testing::MatchesRegex("Cppcheck ended with code [0-9]+: no such library\n"));
    }
}

TEST_F(Core, CppcheckEndsWithTheCoresProcessGroup) {
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

TEST_F(Core, ListsDependenciesWithoutAnalyzing) {
    const CoreEnd end = Run(WriteUnit(Faulty),
                            {
                                {"PATH", folder_.Path()}
    },
                            {"--display-dependencies", "--skip-analysis"});
    ASSERT_EQ(end.exitCode, 0) << end.standardError;
    EXPECT_EQ(end.standardOutput,
              "<}include{>" + project_ + "/u.cpp\n<}include{>/opt/x/sys.h\n<}include{>" + project_ + "/in c.h\n");
    EXPECT_FALSE(PathExists(folder_ / Fragment));
}

TEST_F(Core, RefusesWhatItDoesNotUnderstand) {
    EXPECT_THAT(Run(folder_ / "none.cfg").standardError, HasSubstr("Can't open config file "));
    const std::string settings = WriteUnit(Faulty);
    EXPECT_THAT(Run(settings, {}, {"--skip-analysis"}).standardError, HasSubstr("go together"));
    EXPECT_THAT(Run(settings, {}, {"--fast"}).standardError, HasSubstr("argument \"--fast\" is not understood"));
    EXPECT_EQ(Run(settings, {}, {"--fast"}).exitCode, 1);
}

} // namespace
} // namespace Orvanta
