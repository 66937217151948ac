#include "analysis/RunSummary.h"

#include "analysis/AnalyzerRunner.h"
#include "support/HostPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

CompileCommand UnitOf(std::size_t invocation, const std::string& source) {
    CompileCommand command;
    command.absoluteDirectory = std::make_shared<std::string>(HostPath("/p"));
    const std::vector<std::string> words = {"gcc", source};
    command.arguments = ArgumentList(words);
    command.source = {1, 0};
    command.invocation = invocation;
    return command;
}

// Seven invocations: the third compiles two sources, the fifth to seventh none.
CollectedCommands SomeCommands() {
    CollectedCommands commands;
    commands.units = {UnitOf(1, "a.c"), UnitOf(2, "b.c"), UnitOf(3, "c.c"), UnitOf(3, "d.c"), UnitOf(4, "e.c")};
    commands.skipped = {
        {5, InvocationFate::NotACompilation, "app", "link only"},
        {6, InvocationFate::CompilerUnusable, "foo", "compiler \"foo\" was not found"},
        {7, InvocationFate::NotACompilation, "lib", "link only"},
    };
    commands.invocations = 7;
    return commands;
}

RunOutcome SomeOutcome() {
    RunOutcome outcome;
    outcome.statuses = {AnalyzerStatus::Analyzed, AnalyzerStatus::Excluded, AnalyzerStatus::Analyzed,
                        AnalyzerStatus::CoreFailed, AnalyzerStatus::Analyzed};
    outcome.failures = {{3, "Command \"core\" returned code 3.\nit broke"}};
    outcome.findingsByLevel = {0, 4, 2, 1};
    return outcome;
}

TEST(RunSummary, CountsEachInvocationOnceAndShowsTimeFindingsAndReport) {
    EXPECT_EQ(SummaryText("Analysis finished", CollectedInput(SomeCommands()), SomeOutcome(),
                          std::chrono::milliseconds(3725300), "/p/report.json"),
              "Analysis finished in 1:02:05.3\n"
              "Compiler invocations: 7 (2 analyzed, 2 failed, 2 skipped, 1 excluded)\n"
              "Source files of them: 5 (3 analyzed, 1 failed, 0 skipped, 1 excluded)\n"
              "Skipped: 2 link only\n"
              "Findings: 4 high, 2 medium, 1 low\n"
              "The results are saved to /p/report.json\n");
}

TEST(RunSummary, NamesEveryFailureWithItsReason) {
    EXPECT_EQ(FailureList(CollectedInput(SomeCommands()), SomeOutcome(), FailureForm::Grouped),
              "These could not be analyzed:\n"
              "  invocation 6 (foo): compiler \"foo\" was not found\n"
              "  " +
                  HostPath("/p/d.c") +
                  ": Command \"core\" returned code 3.\n"
                  "    it broke\n");
    EXPECT_EQ(FailureList(CollectedInput({}), {}, FailureForm::Grouped), "");
}

TEST(RunSummary, TellsAReasonThatManyHaveOnce) {
    CollectedCommands commands;
    RunOutcome outcome;
    for (std::size_t unit = 0; unit < 5; ++unit) {
        const std::string name = std::string(1, static_cast<char>('a' + unit)) + ".c";
        commands.units.push_back(UnitOf(unit + 1, name));
        outcome.failures[unit] = unit == 1 ? "its own" : "no core\nat all";
    }
    EXPECT_EQ(FailureList(CollectedInput(commands), outcome, FailureForm::Grouped),
              "These could not be analyzed:\n  4 files: no core\n    at all\n    " + HostPath("/p/a.c") + ", " +
                  HostPath("/p/c.c") + " and 2 more (--verbose names each)\n  " + HostPath("/p/b.c") + ": its own\n");
    const std::string each = FailureList(CollectedInput(commands), outcome, FailureForm::Whole);
    EXPECT_EQ(std::count(each.begin(), each.end(), '\n'), 1 + 4 * 2 + 1) << each;
}

struct ResultCase {
    std::vector<AnalyzerStatus> statuses;
    int code;
};

TEST(CombinedResult, IsZeroOnlyWhenSomethingWasAnalyzedAndNothingFailed) {
    using enum AnalyzerStatus;
    const ResultCase cases[] = {
        {{Analyzed, Excluded}, 0},
        {{Excluded, Excluded}, 1},
        {{Analyzed, PreprocessingFailed}, 1},
        {{Analyzed, CoreFailed}, 1},
        {{Analyzed, Failed}, 1},
        {{Failed, Stopped}, 130},
        {{Stopped}, 130},
    };
    for (const ResultCase& row : cases) {
        RunOutcome outcome;
        outcome.statuses = row.statuses;
        EXPECT_EQ(CombinedResult(outcome), row.code);
    }
}

} // namespace
} // namespace Orvanta
