#include "app/RunTeller.h"

#include "analysis/CoreTallies.h"
#include "analysis/RunSummary.h"
#include "analysis/RunTimes.h"
#include "app/InputReading.h"
#include "platform/Console.h"

#include <string>
#include <string_view>

namespace Orvanta {

// Who reads the log file or wants all lines gets each by name.
void RunTeller::TellFailures(const RunOutcome& outcome) const {
    const std::string whole = FailureList(input_, outcome, FailureForm::Whole);
    if (options_.verbose || whole.empty()) {
        log_.Text(whole);
        return;
    }
    const std::string grouped = FailureList(input_, outcome, FailureForm::Grouped);
    log_.Text(grouped);
    if (grouped != whole) {
        log_.VerboseLine(whole);
    }
}

void RunTeller::TellNotes(const RunOutcome& outcome) const {
    const InvocationCounts counts = CountInvocations(input_, outcome);
    // An empty report would look like clean code. A shard is no report yet.
    if (!options_.shard && counts.excluded + counts.skipped == counts.Total() && counts.excluded > 0) {
        log_.Line("Nothing was analyzed: every compiler invocation is excluded or skipped.");
        if (outcome.inSystemFolders > 0) {
            log_.Line(std::to_string(outcome.inSystemFolders) +
                      " files lie inside the folders of -isystem and the like: --analyze-specified-system-paths "
                      "has them analyzed.");
        }
    }
    log_.Text(ModulesText(input_, outcome));
    log_.Text(TalliesText(outcome.tallies));
}

void RunTeller::TellTimes(std::span<const UnitCost> costs) const {
    const std::string text = TimesText(input_, costs);
    if (text.empty()) {
        return;
    }
    if (MessageColumns() && !options_.quiet) {
        log_.Text(text);
    } else {
        log_.VerboseLine(std::string_view(text).substr(0, text.size() - 1)); // which adds the last line's end
    }
}

// Findings that went to standard output have been seen.
void RunTeller::ShowFindings() const {
    // Who asks for findings with --show gets them, however quiet the rest is.
    if (!options_.quiet || options_.show) {
        log_.Text(shown_.Text(ShowsColours() ? ShownFindings::Colours::Yes : ShownFindings::Colours::No));
    }
    if (shown_.GateMatches() > 0) {
        log_.Line("Findings that stop the build: " + std::to_string(shown_.GateMatches()));
    }
}

int RunResult(const RunOutcome& outcome, const ToldInput& input, const ShownFindings& shown) {
    const int code = CombinedResult(outcome);
    if (code != 0 || HasFailedInvocation(input.Skipped())) {
        // An invocation that gave no unit is source code that nobody looked at.
        return code == 0 ? 1 : code;
    }
    return shown.GateMatches() > 0 ? OrvlogConverter::GateExitCode : 0;
}

} // namespace Orvanta
