#include "platform/CrashHandler.h"

#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace Orvanta {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* CrashLine = "Application has crashed. Please send file orvanta-analyzer.stacktrace.txt to "
                                  "support@orvanta.example\n";

// The sanitizers leave the signals to the child.
const Environment NoOtherHandlers = {
    {"ASAN_OPTIONS", "handle_segv=0:handle_abort=0:use_sigaltstack=0"},
    {"TSAN_OPTIONS", "handle_segv=0:handle_abort=0:use_sigaltstack=0"},
};

struct CrashCase {
    std::string way;
    int signal;
    std::string function; // one that stands in the stack of the crashed thread
};

const CrashCase CrashCases[] = {
    {"segv", SIGSEGV, "CrashOnPurpose"},        {"abort", SIGABRT, "CrashOnPurpose"},
    {"exception", SIGABRT, "CrashOnPurpose"},   {"thread", SIGSEGV, "CrashOnPurpose"},
    {"overflow", SIGSEGV, "OverflowOnPurpose"}, {"thread-overflow", SIGSEGV, "OverflowOnPurpose"},
};

TEST(Crash, LeavesTheStackInAFileAndEndsAsBefore) {
    for (const CrashCase& row : CrashCases) {
        SCOPED_TRACE(row.way);
        const TestFolder folder;
        folder.Write(CrashReportFileName, "an earlier crash\n");
        ChildProgram child({"crash", row.way}, NoOtherHandlers, folder.Path());
        EXPECT_EQ(child.End(), 128 + row.signal);
        EXPECT_THAT(child.StandardError(), testing::EndsWith(CrashLine));
        EXPECT_EQ(child.StandardOutput(), "");
        const std::string report = folder.Read(CrashReportFileName);
        EXPECT_THAT(report, testing::StartsWith("Stack trace"));
        EXPECT_THAT(report, HasSubstr(row.function));
        EXPECT_THAT(report, Not(HasSubstr("an earlier crash")));
    }
}

TEST(Crash, GoesToStandardOutputWhenTheFileCannotBeWritten) {
    const TestFolder folder;
    folder.MakeFolder(CrashReportFileName);
    ChildProgram child({"crash", "segv"}, NoOtherHandlers, folder.Path());
    EXPECT_EQ(child.End(), 128 + SIGSEGV);
    EXPECT_THAT(child.StandardOutput(), HasSubstr("CrashOnPurpose"));
    EXPECT_EQ(child.StandardError(), "");
}

} // namespace
} // namespace Orvanta
