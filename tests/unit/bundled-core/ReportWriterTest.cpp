#include "bundled/ReportWriter.h"

#include "bundled/FileAlias.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using testing::ElementsAre;

const MarkedFile Files[] = {
    {"/p/u.cpp", false, true},
    {"/p/a.h", false, true},
    {"/opt/x/sys.h", true, true},
};

const std::string Source = AliasOf("/p/u.cpp");
const std::string Header = AliasOf("/p/a.h");
const std::string SystemHeader = AliasOf("/opt/x/sys.h");

constexpr SystemMacroText SystemMacros[] = {
    {0, 2, 5, 9},
    {0, 2, 9, 11},
    {1, 2, 1, 99},
};

Finding Found(FindingPlace location, std::string severity, std::string id, std::uint32_t column = 1) {
    return {std::move(location), column, std::move(severity), std::move(id), 7, "text", {}};
}

ReportScope ScopeOf(std::span<const MarkedFile> files) {
    return {files, SystemMacros, {}, {255}};
}

std::vector<std::string> Summaries(std::span<const Finding> findings) {
    std::vector<std::string> summaries;
    for (const OrvlogConverter::ReportMessage& message : MakeReportMessages(findings, ScopeOf(Files)).messages) {
        summaries.push_back(message.positions.front().file + ":" + std::to_string(message.positions.front().line) +
                            " " + std::to_string(message.level) + " " + message.message);
    }
    return summaries;
}

TEST(ReportMessages, AreSortedUniqueAndOnlyOfUsersFiles) {
    const std::vector<Finding> findings = {
        Found({Source, 10}, "style", "b"),
        Found({Source, 9}, "warning", "c"),
        Found({Source, 10}, "performance", "a"),
        Found({Header, 70}, "error", "d"),
        Found({Header, 70}, "error", "d"),
        Found({SystemHeader, 1}, "error", "inSystemHeader"),
        Found({Source, 1}, "information", "aboutCppcheck"),
        Found({Source, 2}, "style", "styleOfASystemMacro", 10),
        Found({Source, 2}, "style", "styleBehindIt", 11),
        Found({Source, 2}, "warning", "f", 5),
        Found({"nofile", 0}, "portability", "e"),
    };
    EXPECT_THAT(Summaries(findings),
                ElementsAre("/p/a.h:70 1 [d] text", "/p/u.cpp:1 3 [e] text", "/p/u.cpp:2 2 [f] text",
                            "/p/u.cpp:2 3 [styleBehindIt] text", "/p/u.cpp:9 2 [c] text", "/p/u.cpp:10 3 [a] text",
                            "/p/u.cpp:10 3 [b] text"));
}

TEST(ReportMessages, CarryThePathAndTheSourceLines) {
    const TestFolder folder;
    const std::string path = folder.Write("u.c", "one\r\ntwo\r\nthree");
    const MarkedFile files[] = {{path, false, true}};
    const std::string alias = AliasOf(path);
    Finding finding = Found({alias, 3}, "error", "nullPointer");
    finding.path = {{alias, 1}, {alias, 3}, {alias, 1}};
    const auto messages = MakeReportMessages({&finding, 1}, ScopeOf(files)).messages;

    OrvlogConverter::ReportMessage expected;
    expected.code = "External";
    expected.message = "[nullPointer] text";
    expected.cwe = 7;
    expected.level = 1;
    expected.positions.resize(2);
    expected.positions[0].file = path;
    expected.positions[0].line = 3;
    expected.positions[0].prevLine = "two";
    expected.positions[0].currLine = "three";
    expected.positions[1].file = path;
    expected.positions[1].line = 1;
    expected.positions[1].currLine = "one";
    expected.positions[1].nextLine = "two";
    EXPECT_THAT(messages, ElementsAre(expected));
}

TEST(ReportMessages, TakeOverOnlyWhatIsNotSaidYet) {
    const std::vector<Finding> own = {Found({Source, 9}, "error", "b"), Found({Header, 5}, "error", "b")};
    std::vector<Finding> others = {Found({Source, 9}, "error", "b"), Found({Source, 9}, "error", "a"),
                                   Found({Source, 7}, "error", "b")};
    others.front().path = {{Header, 1}};
    std::vector<OrvlogConverter::ReportMessage> messages = MakeReportMessages(own, ScopeOf(Files)).messages;
    AddFindings(messages, MakeReportMessages(others, ScopeOf(Files)).messages);
    std::vector<std::pair<std::uint32_t, std::string>> summaries;
    for (const OrvlogConverter::ReportMessage& message : messages) {
        summaries.emplace_back(message.positions.front().line, message.message);
        EXPECT_EQ(message.positions.size(), 1U);
    }
    EXPECT_THAT(summaries, ElementsAre(testing::Pair(5, "[b] text"), testing::Pair(7, "[b] text"),
                                       testing::Pair(9, "[a] text"), testing::Pair(9, "[b] text")));
}

TEST(ReportMessages, OfOneCheckHaveTheLevelOfWhatItTells) {
    std::vector<Finding> findings = {Found({Source, 3}, "", "clang-analyzer-unix.Malloc"),
                                     Found({Source, 4}, "", "clang-analyzer-unix.Malloc")};
    findings[0].message = "Attempt to free released memory";
    findings[1].message = "Potential leak of memory pointed to by 'p'";
    EXPECT_THAT(Summaries(findings),
                ElementsAre("/p/u.cpp:3 1 [clang-analyzer-unix.Malloc] Attempt to free released memory",
                            "/p/u.cpp:4 2 [clang-analyzer-unix.Malloc] Potential leak of memory pointed to by 'p'"));
}

// The second line is what a macro has made of the source's.
TEST(ReportMessages, AreThoseThatTheUserHasChosen) {
    const TestFolder folder;
    const std::string path = folder.Write("u.c", "if (a == 1) {} // known\n"
                                                 "if (MACRO(a)) {}\n"
                                                 "*NULL = 1; // NOLINT\n");
    const MarkedFile files[] = {{path, false, true}};
    const std::string alias = AliasOf(path);
    const std::string text = "# 1 \"" + alias + "\"\nif (a==1) {}\nif ((a) == 1) {}\n*((void *)0) = 1;\n";
    const std::vector<Finding> findings = {
        Found({alias, 1}, "style", "knownConditionTrueFalse"),
        Found({alias, 2}, "style", "knownConditionTrueFalse"),
        Found({alias, 2}, "error", "nullPointer"),
        Found({alias, 2}, "warning", "nullPointer"),
        Found({alias, 1}, "style", "useStlAlgorithm"),
        Found({alias, 1}, "performance", "passedByValue"),
        Found({alias, 3}, "error", "nullPointer"),
    };
    const auto told = [&](const CheckChoice& choice) {
        std::string words;
        const ReportedFindings reported = MakeReportMessages(findings, {files, {}, text, choice});
        for (const OrvlogConverter::ReportMessage& message : reported.messages) {
            words += std::to_string(message.positions.front().line) + message.message.substr(0, 4) +
                     std::to_string(message.level) + " ";
        }
        return words + std::to_string(reported.hidden.size());
    };
    EXPECT_EQ(told({}), "1[kno3 2[nul1 2[nul2 1");
    EXPECT_EQ(told({8}), "1[pas3 0");
    EXPECT_EQ(told({255, true}), "1[kno3 1[pas3 1[use3 2[kno3 2[nul1 2[nul2 1");
}

TEST(ReportMessages, AUnitThatCppcheckCantReadIsNoCleanOne) {
    Finding finding = Found({Header, 4}, "error", "syntaxError");
    finding.message = "Unmatched '{'. Configuration: '__null=NULL'.";
    EXPECT_EQ(ReasonNotRead({&finding, 1}, Files), "/p/a.h, line 4: [syntaxError] Unmatched '{'.");
    finding.id = "nullPointer";
    EXPECT_EQ(ReasonNotRead({&finding, 1}, Files), "");
}

TEST(ReportMessages, AboutIndentationStandWhereNoMacroMovedALineOfTheBlock) {
    const TestFolder folder;
    const std::string path = folder.Write("u.c", "if (a)\n    SET(b);\n    c();\nif (a)\n    d();\n    c();\n");
    const MarkedFile files[] = {{path, false, true}};
    const std::string alias = AliasOf(path);
    const std::string text = "# 1 \"" + alias + "\"\nif (a)\n  set(b);\n    c();\nif (a)\n    d();\n    c();\n";
    std::vector<Finding> findings;
    for (const std::uint32_t line : {3U, 6U}) {
        findings.push_back(Found({alias, line}, "warning", "clang-diagnostic-misleading-indentation"));
        findings.back().path = {{alias, line - 2}};
    }
    const auto told = [&](std::string_view cut) {
        std::vector<std::uint32_t> lines;
        for (const auto& message : MakeReportMessages(findings, {files, {}, cut, {255}}).messages) {
            lines.push_back(message.positions.front().line);
        }
        return lines;
    };
    EXPECT_THAT(told(text), ElementsAre(6U));
    // What a macro of the system leaves stands in a piece of its own.
    EXPECT_THAT(told("# 5 \"" + alias + "\"\n    d\n# 5 \"" + alias + "\"\n   ();\n"), ElementsAre(3U));
    // What stands between directives may have been left out.
    folder.Write("u.c", "if (a)\n    set(b);\n    c();\nif (a)\n#else\n    c();\n");
    EXPECT_THAT(told(text), ElementsAre(3U));
}

TEST(ReportMessages, AreNotCertainOfWhatAStatementExpressionMaySet) {
    const TestFolder folder;
    const std::string path = folder.Write(
        "u.c", "p = 0;\nr = GET(\n    &p);\n*p = 1;\nq = 0;\nASSERT(q);\n*q = 1;\nT *u;\nGET(&u);\n*u = 1;\n");
    const MarkedFile files[] = {{path, false, true}};
    const std::string alias = AliasOf(path);
    const std::string text = "# 1 \"" + alias +
                             "\"\np = 0;\nr = ({ get(\n    &p); });\n*p = 1;\nq = 0;\n({ q ? 0 : end(); });\n*q = 1;\n"
                             "T *u;\n({ get(&u); });\n*u = 1;\n";
    std::vector<Finding> findings = {Found({alias, 4}, "error", "nullPointer"),
                                     Found({alias, 7}, "error", "nullPointer"),
                                     Found({alias, 10}, "error", "uninitvar")};
    findings[0].path = {{alias, 1}, {alias, 4}};
    findings[1].path = {{alias, 5}, {alias, 7}};
    findings[0].message = "Null pointer dereference: p";
    findings[1].message = "Null pointer dereference: q";
    findings[2].message = "Uninitialized variable: u";
    std::vector<std::uint32_t> levels;
    for (const auto& message : MakeReportMessages(findings, {files, {}, text, {255}}).messages) {
        levels.push_back(message.level);
    }
    EXPECT_THAT(levels, ElementsAre(2U, 1U, 2U));
}

} // namespace
} // namespace Orvanta
