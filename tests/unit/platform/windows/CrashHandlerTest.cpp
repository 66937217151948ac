#include "platform/CrashHandler.h"

#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* CrashLine = "Application has crashed. Please send file orvanta-analyzer.stacktrace.txt to "
                                  "support@orvanta.example";

constexpr unsigned AccessViolation = 0xC0000005;
constexpr unsigned StackOverflow = 0xC00000FD;
constexpr unsigned Aborted = 3; // the runtime's code

struct CrashCase {
    std::string way;
    unsigned code;
};

const CrashCase CrashCases[] = {
    {"segv", AccessViolation},   {"abort", Aborted},          {"exception", Aborted},
    {"thread", AccessViolation}, {"overflow", StackOverflow}, {"thread-overflow", StackOverflow},
};

TEST(Crash, LeavesTheStackInAFileAndEndsAsBefore) {
    for (const CrashCase& row : CrashCases) {
        SCOPED_TRACE(row.way);
        const TestFolder folder;
        folder.Write(CrashReportFileName, "an earlier crash\n");
        ChildProgram child({"crash", row.way}, {}, folder.Path());
        EXPECT_EQ(static_cast<unsigned>(child.End()), row.code);
        EXPECT_THAT(child.StandardError(), HasSubstr(CrashLine));
        EXPECT_EQ(child.StandardOutput(), "");
        const std::string report = folder.Read(CrashReportFileName);
        EXPECT_THAT(report, testing::StartsWith("Stack trace"));
        EXPECT_THAT(report, HasSubstr("#1 "));
        EXPECT_THAT(report, Not(HasSubstr("an earlier crash")));
    }
}

TEST(Crash, GoesToStandardOutputWhenTheFileCannotBeWritten) {
    const TestFolder folder;
    folder.MakeFolder(CrashReportFileName);
    ChildProgram child({"crash", "segv"}, {}, folder.Path());
    EXPECT_EQ(static_cast<unsigned>(child.End()), AccessViolation);
    EXPECT_THAT(child.StandardOutput(), testing::StartsWith("Stack trace"));
    EXPECT_THAT(child.StandardError(), Not(HasSubstr(CrashLine)));
}

} // namespace
} // namespace Orvanta
