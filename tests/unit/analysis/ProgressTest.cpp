#include "analysis/Progress.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(ProgressLine, PadsThePercentageAndNamesTheStage) {
    EXPECT_EQ(ProgressLine(5, 0, "/p/a.c"), "[  5%] Analyzing: /p/a.c");
    EXPECT_EQ(ProgressLine(42, 1, "a b.c"), "[ 42%] Parsing includes: a b.c");
    EXPECT_EQ(ProgressLine(100, 2, "/p/a.c"), "[100%] Parsing: /p/a.c");
    EXPECT_EQ(ProgressLine(7, 3, "/p/a.c"), "[  7/p/a.c");
}

TEST(StdOutProgress, NeverShowsAFallingPercentage) {
    Log log;
    StdOutProgress progress(StdOutProgress::Display::Shown, log);
    testing::internal::CaptureStdout();
    progress.Step(50, 0, "b");
    progress.Step(25, 0, "a");
    progress.Step(75, 0, "c");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[ 50%] Analyzing: b\n[ 50%] Analyzing: a\n[ 75%] Analyzing: c\n");
}

TEST(StdOutProgress, ShowsMessagesButNeitherStepsNorSummaryWhenHidden) {
    Log log;
    StdOutProgress progress(StdOutProgress::Display::Hidden, log);
    testing::internal::CaptureStdout();
    progress.Step(50, 0, "a");
    progress.Message("attention");
    progress.Finish("summary\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "attention\n");
}

} // namespace
} // namespace Orvanta
