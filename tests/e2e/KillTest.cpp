// Guards against findings that are lost when the driver is killed, and against files of a run that another one clears.

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"

#include <filesystem>

namespace Orvanta {

namespace {

class KillTest : public SandboxTest {};

std::vector<std::string> MessagesIn(const Sandbox& sandbox, const std::string& report) {
    const std::string text = sandbox.Read(report);
    return MessagesOf(report.ends_with(".json") ? FindingsOfReport(text) : FindingsOfLines(text));
}

TEST_F(KillTest, FinishedUnitsStayAndTheNextRunClearsTheRest) {
    const std::vector<std::string> finished = {"first", "second"};
    for (const char* const report : {"report.json", "report.jsonl"}) {
        SCOPED_TRACE(report);
        Sandbox own;
        own.AddUnit("a.c", {"finding V501 1 1 first", "finding V502 2 2 second"});
        own.AddUnit("b.c", {"finding V501 1 1 unfinished", "hang"});
        own.AddUnit("c.c", {"finding V501 1 1 unfinished", "partial-line", "hang"});
        const std::unique_ptr<RunningDriver> run = own.StartAnalyze({"-q", "-j", "2", "-o", report});
        ASSERT_TRUE(HoldsSoon([&] {
            return own.Exists("records/core-of-b.c.hangs") && own.Exists("records/core-of-c.c.hangs") &&
                   MessagesIn(own, report) == finished;
        }));
        run->Kill();
        EXPECT_EQ(MessagesIn(own, report), finished);

        own.WriteScript("b.c", {"finding V501 1 1 third"});
        own.WriteScript("c.c", {"finding V501 1 1 fourth"});
        EXPECT_EQ(own.Analyze({"-q", "-o", report}).exitCode, 0);
        EXPECT_EQ(MessagesIn(own, report), (std::vector<std::string>{"first", "second", "third", "fourth"}));
        EXPECT_TRUE(own.Leftovers().empty()) << "what the killed run left is not cleared";
    }
}

TEST_F(KillTest, WhatWasCollectedIsClearedByAnyRun) {
    sandbox.AddUnit("a.c");
    sandbox.AddUnit("b.c", {"first-run hang"});
    const std::unique_ptr<RunningDriver> run = sandbox.StartAnalyze({"--intermodular", "-j", "1", "-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("records/core-of-b.c.hangs"); }));
    run->Kill();
    EXPECT_EQ(sandbox.Analyze({"-q"}).exitCode, 0);
    EXPECT_TRUE(sandbox.Leftovers().empty());
    for (const auto& entry : std::filesystem::directory_iterator(NativePath(sandbox.Path(".Orvanta")))) {
        const std::string name = PathText(entry.path().filename());
        EXPECT_TRUE(name == ".gitignore" || name.starts_with(".orvlock-")) << name;
    }
}

TEST_F(KillTest, FilesOfARunStillAliveAreNotCleared) {
    sandbox.AddUnit(
        "a.c", {"touch " + sandbox.Path("started"), "wait-for " + sandbox.Path("go-on"), "finding V501 1 1 found"});
    const std::unique_ptr<RunningDriver> first = sandbox.StartAnalyze({"-o", "report.json"});
    ASSERT_TRUE(HoldsSoon([&] { return sandbox.Exists("started"); }));
    sandbox.WriteScript("a.c", {"finding V501 1 1 other"});
    EXPECT_EQ(sandbox.Analyze({"-o", "other.json"}).exitCode, 0);
    sandbox.Write("go-on", "");
    const RunResult result = first->Wait();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(MessagesOf(Report()), std::vector<std::string>{"found"});
}

} // namespace

} // namespace Orvanta
