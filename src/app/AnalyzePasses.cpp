#include "app/AnalyzePasses.h"

#include "analysis/AnalyzerRunner.h"
#include "analysis/JournalWriter.h"
#include "analysis/ReportCommitter.h"
#include "analysis/SourceSelection.h"
#include "app/FindingChain.h"
#include "app/InputReading.h"
#include "app/OpenJournal.h"
#include "app/OpenPart.h"
#include "app/RunMonitor.h"
#include "app/RunSetup.h"
#include "app/ShownFindings.h"
#include "app/StageReceivers.h"
#include "app/Version.h"
#include "report/ReportPass.h"
#include "report/SourceRootTransformer.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace Orvanta {

namespace {

constexpr unsigned AllPercents = 100;

constexpr const char* Collecting = "Intermodular analysis stage: Collecting intermodular information.\n";
constexpr const char* Linking = "Intermodular analysis stage: Linking intermodular information.\n";
constexpr const char* Performing = "Intermodular analysis stage: Performing analysis.\n";

// The runner takes pointers, so that nothing of a large build is copied.
std::vector<const CompileCommand*> PointersTo(std::span<const CompileCommand> commands) {
    std::vector<const CompileCommand*> pointers;
    pointers.reserve(commands.size());
    for (const CompileCommand& command : commands) {
        pointers.push_back(&command);
    }
    return pointers;
}

std::string SourceFiles(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " source file" : " source files");
}

bool AreAll(std::span<const UnitAction> actions, UnitAction wanted) {
    return std::all_of(actions.begin(), actions.end(), [wanted](UnitAction action) { return action == wanted; });
}

} // namespace

bool UsesHistory(const AnalyzeInput& input) {
    return input.options.incremental || input.listedFiles || RegenerationOf(input.options);
}

AnalyzePasses::AnalyzePasses(const AnalyzeInput& input, const RunPlaces& places, AnalyzerRunner& runner,
                             RunMonitor& monitor, const UserSide& user)
    : input_(input), places_(places), runner_(runner), monitor_(monitor), user_(user),
      units_(PointersTo(input.commands.units)) {
    ending_.outcome.statuses.assign(units_.size(), AnalyzerStatus::Stopped);
}

void AnalyzePasses::Run() {
    try {
        if (UsesHistory(input_)) {
            const ResultMakers makers = {places_.corePath, places_.coreVersion, Version};
            const RunHistory::Places places = {OrvantaFolder(places_.outputFolder), makers, input_.reportPath};
            history_.emplace(input_.options, input_.settings, input_.commands.units, places, user_.log);
            if (input_.listedFiles && !input_.options.allowEmpty) {
                // Before the first pass: a list that means nothing must not cost the listing of all units.
                history_->RequireListedFile(*input_.listedFiles);
            }
        }
        journal_ = OpenJournal(input_, places_, user_.log);
        GoThrough(ListPasses());
        EndJournal();
    } catch (...) {
        Keep();
        throw;
    }
    if (!Keep() && RegenerationOf(input_.options) == RegenerateDependInfoOption::SkipAnalysis) {
        ending_.summary.clear(); // to keep them was all that the run was for
        throw ZelmException("The dependencies can't be saved to " + OrvantaFolder(places_.outputFolder));
    }
}

void AnalyzePasses::GoThrough(const std::vector<Pass>& passes) {
    unsigned percent = 0;
    for (std::size_t index = 0; index < passes.size() && !user_.stop.IsSet(); ++index) {
        // May take a while, as linking does, hence the second look at the stop behind it.
        const std::optional<Actions> actions = passes[index].select();
        if (user_.stop.IsSet() || !actions) {
            continue;
        }
        // A pass that was passed over leaves its share to those behind it.
        const unsigned share = (AllPercents - percent) / static_cast<unsigned>(passes.size() - index);
        (this->*passes[index].run)(passes[index], *actions, {percent, percent + share});
        percent += share;
    }
}

void AnalyzePasses::EndJournal() {
    if (journal_ && user_.stop.IsSet() && journal_->HoldsAny()) {
        ending_.lastLine = "What is finished is kept: the same command with --resume goes on from here.";
    } else if (journal_) {
        journal_->Remove();
    }
}

// What came of the units, for the end of the run and for later ones. Returns whether all could be written.
bool AnalyzePasses::Keep() {
    RunOutcome& outcome = ending_.outcome;
    for (const auto& [failure, earlier] : learned_) {
        // A unit that failed in an earlier stage has failed, whatever became of it later.
        for (const auto& [unit, reason] : earlier.failures) {
            outcome.Fail(unit, failure + reason, earlier.statuses[unit]);
        }
    }
    if (!history_) {
        return true;
    }
    // After the failures of earlier passes are in: a unit that failed in one is to run again.
    const bool isSaved = history_->Save(outcome);
    // Last, and only of a run without fault: what is marked may be left as it is by the next one.
    if (writesWholeReport_ && CombinedResult(outcome) == 0 && !HasFailedInvocation(input_.commands.skipped)) {
        history_->MarkReport();
    }
    return isSaved;
}

// What each way to analyze is made of.
std::vector<AnalyzePasses::Pass> AnalyzePasses::ListPasses() {
    const std::optional<RegenerateDependInfoOption> regeneration = RegenerationOf(input_.options);
    const auto list = [this] {
        return SelectForListing();
    };
    if (regeneration == RegenerateDependInfoOption::SkipAnalysis) {
        return {{Work::ListDependencies{history_->Units()}, list, &AnalyzePasses::LearnOnly}};
    }
    if (input_.stage) {
        return ListStagePasses();
    }
    if (input_.options.intermodular) {
        return ListIntermodularPasses();
    }
    if (!history_) {
        const auto all = [this] {
            return SelectAll(input_.commands.units, input_.settings);
        };
        return {{Work::Analyze{journal_.get()}, all, &AnalyzePasses::Report}};
    }
    std::vector<Pass> passes;
    if (regeneration || input_.listedFiles) {
        passes.push_back({Work::ListDependencies{history_->Units()}, list, &AnalyzePasses::Learn,
                          "Its dependencies could not be listed: "});
    }
    passes.push_back({Work::AnalyzeAndKeep{history_->Units()}, [this] { return SelectForAnalysis(); },
                      &AnalyzePasses::ReportByHistory});
    return passes;
}

std::vector<AnalyzePasses::Pass> AnalyzePasses::ListIntermodularPasses() {
    const auto collect = [this]() -> std::optional<Actions> {
        user_.log.Text(Collecting);
        PrepareMerge(places_);
        return Actions(units_.size(), UnitAction::Run); // nothing is excluded: others may use it
    };
    const auto perform = [this]() -> std::optional<Actions> {
        user_.log.Text(Linking);
        runner_.RunMerge(units_);
        if (user_.stop.IsSet()) {
            return std::nullopt;
        }
        user_.log.Text(Performing);
        return SelectAll(input_.commands.units, input_.settings);
    };
    // Made before the first unit is collected: what changes from here on is seen.
    FileChanges& changes = changes_.emplace(places_.temporaryFolder);
    const UnitWork collecting = history_ ? UnitWork(Work::CollectAndKeep{history_->Units()}) : Work::Collect{};
    return {{collecting, collect, &AnalyzePasses::Learn, NotCollected},
            {Work::Perform{changes}, perform, &AnalyzePasses::Report}};
}

std::vector<AnalyzePasses::Pass> AnalyzePasses::ListStagePasses() {
    switch (input_.stage->stage) {
    case IntermodularStage::Collect: {
        const auto collect = [this]() -> std::optional<Actions> {
            user_.log.Text(Collecting);
            return Actions(units_.size(), UnitAction::Run);
        };
        return {{Work::Collect{.leavesText = false}, collect, &AnalyzePasses::Collect}};
    }
    case IntermodularStage::Link: {
        const auto link = [this]() -> std::optional<Actions> {
            user_.log.Text(Linking);
            Link();
            return std::nullopt;
        };
        return {{Work::Collect{}, link, nullptr}};
    }
    case IntermodularStage::Perform:
        break;
    }
    const auto perform = [this]() -> std::optional<Actions> {
        user_.log.Text(Performing);
        return SelectAll(input_.commands.units, input_.settings);
    };
    return {{Work::Perform{changes_.emplace(places_.temporaryFolder)}, perform, &AnalyzePasses::Report}};
}

std::optional<AnalyzePasses::Actions> AnalyzePasses::SelectForListing() {
    Actions actions = history_->SelectForListing();
    return RunsNone(actions) ? std::nullopt : std::optional(std::move(actions));
}

std::optional<AnalyzePasses::Actions> AnalyzePasses::SelectForAnalysis() {
    if (input_.listedFiles) {
        Actions actions = history_->SelectListedUnits(*input_.listedFiles);
        // An excluded unit counts as selected: the user has listed it, and hears that it is excluded.
        if (!AreAll(actions, UnitAction::LeaveOut)) {
            return actions;
        }
        ending_.lastLine = "Nothing to analyze - no files from source files list were found.";
        ending_.selectsNothing = true;
        ending_.outcome.statuses.assign(units_.size(), AnalyzerStatus::NotListed);
        return std::nullopt;
    }
    Actions actions = history_->SelectUnits();
    if (!input_.options.incremental || !RunsNone(actions)) {
        return actions;
    }
    ending_.lastLine = "Nothing to analyze - no modified files were found.";
    // Nothing is to run, but the report must be made from what the history has kept.
    if (!history_->IsReportWhole()) {
        return actions;
    }
    // None is to run, so these two are all that is left of the actions.
    std::transform(actions.begin(), actions.end(), ending_.outcome.statuses.begin(), [](UnitAction action) {
        return action == UnitAction::CarryOver ? AnalyzerStatus::CarriedOver : AnalyzerStatus::Excluded;
    });
    ending_.outcome.isReportKept = true;
    ending_.reportPath = input_.reportPath;
    ShowKeptReport();
    return std::nullopt;
}

// A report that stays as it was is shown like one just made.
void AnalyzePasses::ShowKeptReport() {
    OrvlogConverter::SourceRootTransformer chain(&user_.shown, SourceTreeRoot(input_.settings));
    OrvlogConverter::PassReport(input_.reportPath,
                                {[&chain](const OrvlogConverter::ReportMessage& message, std::string_view /*text*/) {
                                    chain.Write(message);
                                }},
                                user_.stop);
}

// A pass whose results are for those that follow, or for later runs.
void AnalyzePasses::Learn(const Pass& pass, const Actions& actions, PercentRange percents) {
    OutcomeReceiver receiver(units_.size());
    Go(pass, actions, percents, receiver, learned_.emplace_back(pass.failure, RunOutcome()).second);
}

// The same, when none follows.
void AnalyzePasses::LearnOnly(const Pass& pass, const Actions& actions, PercentRange percents) {
    Learn(pass, actions, percents);
    ending_.outcome = learned_.back().second;
    const auto& statuses = ending_.outcome.statuses;
    const auto count = std::count(statuses.begin(), statuses.end(), AnalyzerStatus::Analyzed);
    ending_.summary = "The dependencies of " + std::to_string(count) + " source files are saved to " +
                      OrvantaFolder(places_.outputFolder) + "\n";
}

// A pass whose results make up the report.
void AnalyzePasses::Report(const Pass& pass, const Actions& actions, PercentRange percents) {
    std::unique_ptr<PartWriter> ofShard = OpenPart(input_, places_);
    PartWriter* const part = ofShard.get(); // null: the report is written
    std::unique_ptr<OrvlogConverter::ReportOutput> output = std::move(ofShard);
    if (!output) {
        output = OpenReport(input_.reportPath, input_.settings);
    }
    ending_.reportPath = input_.reportPath;
    // A part leaves the root out of its paths by itself.
    FindingChain chain(*output, input_.base, user_.shown, {part ? "" : SourceTreeRoot(input_.settings)},
                       part ? &part->HiddenFindings() : nullptr);
    // Committed at once: from the first moment the report holds the notice of an outdated base, if there is one.
    chain.Front().Begin();
    output->Commit();
    // Findings that were carried over are fetched when their turn has come, so that they never lie in memory together.
    ReportCommitter committer(units_.size(), *output, chain.Front(), [this](std::size_t unit) {
        return journal_ ? journal_->Findings(unit) : history_->Units().KeptFindings(unit);
    });
    committer.TellTo(part);
    std::unique_ptr<ResultReceiver> before; // gets the results before the committer; null: nobody
    if (journal_) {
        before = std::make_unique<JournalWriter>(*journal_, committer);
    } else if (input_.stage) {
        before = std::make_unique<PerformedResults>(CollectFailures(), committer);
    }
    Go(pass, actions, percents, before ? *before : committer, ending_.outcome);
    // Only of a pass that came to its end: after an error the last commit stands.
    chain.Front().End();
    if (input_.base) {
        ending_.outcome.hiddenFindings = chain.HiddenCount();
        ending_.outcome.findingsByLevel[1] += input_.base->IsOutdated() ? 1U : 0U; // the notice of that is a finding
    }
}

// A pass whose results a later run links.
void AnalyzePasses::Collect(const Pass& pass, const Actions& actions, PercentRange percents) {
    const StageInput& stage = *input_.stage;
    const std::unique_ptr<PartWriter> part = OpenCollectedPart(input_, places_);
    // In this order: from the first moment on nothing of an earlier run is taken for this one's.
    part->Commit();
    stage.folder.ForgetUnits(stage.selection.shard);
    ReportCommitter committer(units_.size(), *part);
    committer.TellTo(part.get());
    CollectedResults results(committer);
    Go(pass, actions, percents, results, ending_.outcome);
    stage.folder.NoteUnits(stage.selection.shard);
    part->End();
    const auto& statuses = ending_.outcome.statuses;
    const auto count = std::count(statuses.begin(), statuses.end(), AnalyzerStatus::Analyzed);
    ending_.summary = "The intermodular information of " + SourceFiles(static_cast<std::size_t>(count)) +
                      " is saved to " + stage.folder.FolderOf(stage.selection.shard) + "\n";
}

void AnalyzePasses::Link() {
    const StageInput& stage = *input_.stage;
    stage.folder.ForgetLinked();
    runner_.RunMerge(units_);
    if (user_.stop.IsSet()) {
        return;
    }
    stage.folder.NoteLinked(stage.collected);
    ending_.outcome.statuses.assign(units_.size(), AnalyzerStatus::NotListed);
    ending_.summary = "The intermodular information of " +
                      SourceFiles(units_.size() - stage.collected.failures.size()) + " is linked into " +
                      places_.mergedFile + "\n";
}

std::map<std::size_t, CollectFailure> AnalyzePasses::CollectFailures() const {
    const StageInput& stage = *input_.stage;
    std::map<std::size_t, CollectFailure> failures;
    for (std::size_t unit = 0; unit < stage.selection.units.size(); ++unit) {
        if (const auto failure = stage.collected.failures.find(stage.selection.units[unit]);
            failure != stage.collected.failures.end()) {
            failures.emplace(unit, failure->second);
        }
    }
    return failures;
}

// The same, of units that carry their findings over to later runs.
void AnalyzePasses::ReportByHistory(const Pass& pass, const Actions& actions, PercentRange percents) {
    writesWholeReport_ = !input_.listedFiles;
    Report(pass, actions, percents);
}

// What became of the units is known also when the pass ends in an error.
void AnalyzePasses::Go(const Pass& pass, const Actions& actions, PercentRange percents, ResultReceiver& receiver,
                       RunOutcome& outcome) {
    if (units_.empty()) { // of a shard that has none
        outcome = receiver.Outcome();
        return;
    }
    std::vector<PlacedCommand> commands;
    commands.reserve(units_.size());
    for (const std::size_t unit : monitor_.BeginPass(pass.work, actions)) {
        commands.push_back({units_[unit], unit});
    }
    try {
        runner_.RunParallel(commands, input_.threads,
                            {pass.work, actions, monitor_.Needs(), percents, receiver, monitor_});
    } catch (...) {
        monitor_.EndPass();
        outcome = receiver.Outcome();
        throw;
    }
    monitor_.EndPass();
    outcome = receiver.Outcome();
}

} // namespace Orvanta
