#include "cppcheck/ReportWriter.h"

#include "cppcheck/FileAlias.h"
#include "platform/Exceptions.h"
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

CppcheckFinding Finding(CppcheckLocation location, std::string severity, std::string id, std::uint32_t column = 1) {
    return {std::move(location), column, std::move(severity), std::move(id), 7, "text", {}};
}

std::vector<std::string> Summaries(std::span<const CppcheckFinding> findings) {
    std::vector<std::string> summaries;
    for (const OrvlogConverter::ReportMessage& message : MakeReportMessages(findings, Files, SystemMacros)) {
        summaries.push_back(message.positions.front().file + ":" + std::to_string(message.positions.front().line) +
                            " " + std::to_string(message.level) + " " + message.message);
    }
    return summaries;
}

TEST(ReportMessages, AreSortedUniqueAndOnlyOfUsersFiles) {
    const std::vector<CppcheckFinding> findings = {
        Finding({Source, 10}, "style", "b"),
        Finding({Source, 9}, "warning", "c"),
        Finding({Source, 10}, "performance", "a"),
        Finding({Header, 70}, "error", "d"),
        Finding({Header, 70}, "error", "d"),
        Finding({SystemHeader, 1}, "error", "inSystemHeader"),
        Finding({Source, 1}, "information", "aboutCppcheck"),
        Finding({Source, 2}, "style", "styleOfASystemMacro", 10),
        Finding({Source, 2}, "style", "styleBehindIt", 11),
        Finding({Source, 2}, "warning", "f", 5),
        Finding({"nofile", 0}, "portability", "e"),
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
    CppcheckFinding finding = Finding({alias, 3}, "error", "nullPointer");
    finding.path = {{alias, 1}, {alias, 3}, {alias, 1}};
    const auto messages = MakeReportMessages({&finding, 1}, files, {});

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
    const std::vector<CppcheckFinding> own = {Finding({Source, 9}, "error", "b"), Finding({Header, 5}, "error", "b")};
    std::vector<CppcheckFinding> others = {Finding({Source, 9}, "error", "b"), Finding({Source, 9}, "error", "a"),
                                           Finding({Source, 7}, "error", "b")};
    others.front().path = {{Header, 1}};
    std::vector<OrvlogConverter::ReportMessage> messages = MakeReportMessages(own, Files, {});
    AddFindings(messages, MakeReportMessages(others, Files, {}));
    std::vector<std::pair<std::uint32_t, std::string>> summaries;
    for (const OrvlogConverter::ReportMessage& message : messages) {
        summaries.emplace_back(message.positions.front().line, message.message);
        EXPECT_EQ(message.positions.size(), 1U);
    }
    EXPECT_THAT(summaries, ElementsAre(testing::Pair(5, "[b] text"), testing::Pair(7, "[b] text"),
                                       testing::Pair(9, "[a] text"), testing::Pair(9, "[b] text")));
}

TEST(ReportMessages, AUnitThatCppcheckCantReadIsNoCleanOne) {
    CppcheckFinding finding = Finding({Header, 4}, "error", "syntaxError");
    finding.message = "Unmatched '{'. Configuration: '__null=NULL'.";
    try {
        ThrowIfNotAnalyzed({&finding, 1}, Files);
        FAIL() << "nothing was thrown";
    } catch (const ZelmException& error) {
        EXPECT_STREQ(error.what(), "Cppcheck can't read this unit: /p/a.h, line 4: [syntaxError] Unmatched '{'.");
    }
    finding.id = "nullPointer";
    EXPECT_NO_THROW(ThrowIfNotAnalyzed({&finding, 1}, Files));
}

} // namespace
} // namespace Orvanta
