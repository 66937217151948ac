#include "app/AnalyzeRun.h"

#include "analysis/CoreLocator.h"
#include "analysis/ReportCommitter.h"
#include "analysis/RunSummary.h"
#include "analysis/SourceSelection.h"
#include "app/FindingChain.h"
#include "app/InputReading.h"
#include "app/RunSetup.h"
#include "buildinput/CompilationDatabase.h"
#include "history/UnitIdentities.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/TemporaryFolder.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace Orvanta {

namespace {

Log::Verbosity VerbosityOf(const AnalyzeOptions& options) {
    return options.verbose ? Log::Verbosity::Verbose : Log::Verbosity::Normal;
}

// The folder of the report, or the current one.
std::string FolderOf(const std::string& reportPath) {
    return reportPath.empty() ? CurrentDirectory() : std::string(DirectoryOf(reportPath));
}

// A run that was killed while it started a child leaves its locks to that child for a moment.
constexpr std::chrono::milliseconds LongestWaitForLock{200};

// Of the progress, for runs of two passes.
constexpr PercentRange FirstHalf = {0, 50};
constexpr PercentRange SecondHalf = {50, 100};

constexpr const char* UnlistedDependencies = "Its dependencies could not be listed: ";

// The names of the units, in order.
Fingerprint NamesOf(std::span<const UnitIdentity> identities) {
    FingerprintBuilder names;
    for (const UnitIdentity& identity : identities) {
        names.Add(identity.id);
    }
    return names.Value();
}

/// What the collecting stage leaves, for as long as the stages run.
class CollectedInformation {
public:
    CollectedInformation(const AnalyzerRunner& runner, std::span<const CompileCommand* const> units)
        : runner_(runner), units_(units) {}

    ~CollectedInformation() { runner_.RemoveCollected(units_); }

    CollectedInformation(const CollectedInformation&) = delete;
    CollectedInformation& operator=(const CollectedInformation&) = delete;

private:
    const AnalyzerRunner& runner_;
    std::span<const CompileCommand* const> units_;
};

} // namespace

AnalyzeRun::AnalyzeRun(const AnalyzeOptions& options)
    : options_(options), settings_(MakeRunSettings(options)), threads_(ThreadCount(options)),
      reportPath_(ReportPath(options, settings_)), mark_(OrvantaFolder(FolderOf(reportPath_))),
      log_(VerbosityOf(options)),
      progress_(options.quiet ? StdOutProgress::Display::Hidden : StdOutProgress::Display::Shown, log_) {}

void AnalyzeRun::Run() {
    if (options_.dumpLog) {
        log_.OpenFile(AbsolutePath(*options_.dumpLog));
    }
    if (options_.suppressFile) { // before the work of which a broken base would take the report
        base_ = OrvlogConverter::SuppressBase::Read(*options_.suppressFile);
    }
    listedFiles_ = ReadListedFiles(options_, log_);
    commands_ = ReadInput(options_, settings_, registry_, log_, stop_);
    if (stop_.IsSet()) {
        throw ZelmRcException(InterruptedExitCode);
    }
    if (options_.dumpJson) {
        WriteCompilationDatabase(AbsolutePath(*options_.dumpJson), commands_.units);
    }
    if (commands_.units.empty()) {
        log_.Text(FailureList(commands_, outcome_));
        progress_.Finish(SummaryText(commands_, outcome_, Elapsed(), "")); // there is no report
        throw ZelmException("No source file to analyze");
    }
    if (const int code = Analyze(); code != 0) {
        throw ZelmRcException(code);
    }
}

std::chrono::milliseconds AnalyzeRun::Elapsed() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
}

std::string AnalyzeRun::OutputFolder() const {
    return FolderOf(reportPath_);
}

bool AnalyzeRun::UsesHistory() const {
    return options_.incremental || listedFiles_ || RegenerationOf(options_);
}

int AnalyzeRun::Analyze() {
    TakeLocks();
    const TemporaryFolder temporaryFolder;
    const RunPlaces places = MakePlaces(temporaryFolder.Path());
    AnalyzerRunner runner(settings_, registry_, places, log_, progress_, stop_);
    outcome_.statuses.assign(commands_.units.size(), AnalyzerStatus::Stopped);
    units_.reserve(commands_.units.size());
    for (const CompileCommand& unit : commands_.units) {
        units_.push_back(&unit);
    }
    return UsesHistory() ? AnalyzeByHistory(runner, places.corePath) : AnalyzeAll(runner);
}

// What is written to standard output needs no lock.
void AnalyzeRun::TakeLocks() {
    using State = LockFile::State;
    const auto tellNoLocks = [this](const LockFile& lock, const std::string& path) {
        if (lock.CurrentState() == State::Unsupported) {
            log_.Line("Note: the file system of " + path + " has no locks: let no two runs write there at a time");
        }
    };
    if (!reportPath_.empty() && reportLock_.Take(reportPath_, LongestWaitForLock, stop_) == State::HeldByOther) {
        throw ZelmException("Another run is writing to " + reportPath_);
    }
    tellNoLocks(reportLock_, reportPath_);
    if (UsesHistory() || options_.intermodular) {
        const std::string shared = OrvantaFolder(OutputFolder());
        if (folderLock_.Take(shared, LongestWaitForLock, stop_) == State::HeldByOther) {
            throw ZelmException("Another run is using " + shared);
        }
    }
}

RunPlaces AnalyzeRun::MakePlaces(const std::string& temporaryFolder) {
    RunPlaces places;
    places.corePath = CorePath();
    places.unitFolder = temporaryFolder;
    places.temporaryFolder = temporaryFolder;
    places.outputFolder = OutputFolder();
    if (options_.dumpFiles) {
        places.unitFolder = OrvantaFolder(OutputFolder());
        places.unitFiles = SettingsFile::Lifetime::Keep;
        MakeFolders(places.unitFolder);
        log_.Line("The files of the units are kept in " + places.unitFolder);
    }
    return places;
}

std::string AnalyzeRun::CorePath() {
    if (options_.corePath) {
        return AbsolutePath(*options_.corePath);
    }
    const CoreLocation core = LocateCore(ProgramDirectory());
    if (core.origin == CoreLocation::Origin::Bundled) {
        log_.Line("Using the bundled core: " + core.path);
    }
    return core.path;
}

int AnalyzeRun::AnalyzeAll(AnalyzerRunner& runner) {
    if (options_.intermodular) {
        return AnalyzeAcrossUnits(runner);
    }
    AnalyzeUnits(runner, IntermodularAnalysisMode::None, {});
    return EndAnalysis(reportPath_);
}

int AnalyzeRun::AnalyzeAcrossUnits(AnalyzerRunner& runner) {
    log_.Text("Intermodular analysis stage: Collecting intermodular information.\n");
    runner.PrepareIntermodular();
    const CollectedInformation information(runner, units_);
    OutcomeReceiver collected(units_.size());
    const RunPlan collecting = {.percents = FirstHalf};
    bool goesOn = runner.RunParallel(units_, threads_, IntermodularAnalysisMode::FirstRun, collected, collecting) !=
                  InterruptedExitCode;
    if (goesOn) {
        log_.Text("Intermodular analysis stage: Linking intermodular information.\n");
        goesOn = runner.RunMerge(units_);
    }
    if (!goesOn) { // nothing is analyzed yet, and the report is as it was
        return EndAnalysis("");
    }
    log_.Text("Intermodular analysis stage: Performing analysis.\n");
    AnalyzeUnits(runner, IntermodularAnalysisMode::SecondRun, {.percents = SecondHalf});
    AddEarlierFailures(collected.Outcome(), "Its intermodular information could not be collected: ");
    return EndAnalysis(reportPath_);
}

int AnalyzeRun::AnalyzeByHistory(AnalyzerRunner& runner, const std::string& corePath) {
    std::vector<UnitIdentity> identities = IdentifyUnits(commands_.units, settings_, corePath);
    const Fingerprint names = NamesOf(identities);
    UnitHistory history(OrvantaFolder(OutputFolder()), commands_.units, std::move(identities));
    ReadHistory(history);
    const RunOutcome listed = ListDependencies(runner, history);
    if (stop_.IsSet()) {
        history.Save();
        return EndAnalysis("");
    }
    if (RegenerationOf(options_) == RegenerateDependInfoOption::SkipAnalysis) {
        history.Save();
        return EndWithoutAnalysis(listed);
    }
    if (options_.intermodular) {
        history.Save();
        return AnalyzeAcrossUnits(runner);
    }
    const RunPlan plan = SelectUnits(history);
    if (listedFiles_ && RunsNone(plan.actions)) {
        history.Save();
        std::fill(outcome_.statuses.begin(), outcome_.statuses.end(), AnalyzerStatus::NotListed);
        AddEarlierFailures(listed, UnlistedDependencies);
        EndAnalysis("");
        log_.Line("Nothing to analyze - no files from source files list were found.");
        return 1;
    }
    if (options_.incremental && RunsNone(plan.actions)) {
        return EndWithNothingModified(runner, plan, ReportContents(names, history));
    }
    AnalyzeUnits(runner, IntermodularAnalysisMode::None, plan);
    for (const auto& [unit, reason] : outcome_.failures) {
        history.ForgetResult(unit);
    }
    history.Save();
    AddEarlierFailures(listed, UnlistedDependencies);
    const int code = EndAnalysis(reportPath_);
    if (code == 0 && !listedFiles_ && !reportPath_.empty()) {
        mark_.Write(ReportContents(names, history));
    }
    return code;
}

void AnalyzeRun::ReadHistory(UnitHistory& history) {
    const UnitHistory::ReadResult result = history.Read();
    if (RegenerationOf(options_)) {
        return; // made anew in any case
    }
    switch (result) {
    case UnitHistory::ReadResult::Read:
        break;
    case UnitHistory::ReadResult::Missing:
        log_.Line("Couldn't find depend_info.json. Generating new one");
        break;
    case UnitHistory::ReadResult::Unreadable:
        log_.Line("Couldn't read depend_info.json");
        log_.VerboseLine("  " + history.Fault());
        break;
    }
}

// Lists the dependencies that must be known before units are selected. An incremental run lists those of a unit when it
// analyzes it.
RunOutcome AnalyzeRun::ListDependencies(AnalyzerRunner& runner, UnitHistory& history) {
    const bool listsAll = RegenerationOf(options_).has_value();
    OutcomeReceiver receiver(units_.size());
    if (!listsAll && !listedFiles_) {
        return receiver.Outcome();
    }
    RunPlan plan = {.work = RunPlan::Work::ListDependencies, .history = &history};
    if (RegenerationOf(options_) != RegenerateDependInfoOption::SkipAnalysis) {
        plan.percents = FirstHalf;
    }
    for (std::size_t unit = 0; unit < units_.size(); ++unit) {
        const bool isKnown = history.IsLeftOut(unit) || history.KnowsDependencies(unit);
        plan.actions.push_back(listsAll || !isKnown ? UnitAction::Run : UnitAction::LeaveOut);
    }
    if (!RunsNone(plan.actions)) {
        runner.RunParallel(units_, threads_, IntermodularAnalysisMode::None, receiver, plan);
        analysisPercents_ = SecondHalf;
    }
    return receiver.Outcome();
}

int AnalyzeRun::EndWithoutAnalysis(const RunOutcome& listed) {
    outcome_ = listed;
    log_.Text(FailureList(commands_, outcome_));
    const auto count = std::count(listed.statuses.begin(), listed.statuses.end(), AnalyzerStatus::Analyzed);
    progress_.Finish("The dependencies of " + std::to_string(count) + " source files are saved to " +
                     OrvantaFolder(OutputFolder()) + "\n");
    return listed.failures.empty() && !HasFailedInvocation(commands_) ? 0 : 1;
}

void AnalyzeRun::TellNotListed(std::span<const UnitAction> actions) {
    for (std::size_t unit = 0; log_.IsVerbose() && unit < actions.size(); ++unit) {
        if (actions[unit] == UnitAction::LeaveOut) {
            const CompileCommand& command = *units_[unit];
            log_.VerboseLine("  Skipped: invocation " + std::to_string(command.invocation) + " (" +
                             std::string(command.SourceFile()) + "): not in the list of source files");
        }
    }
}

RunPlan AnalyzeRun::SelectUnits(UnitHistory& history) {
    RunPlan plan = {.history = &history, .percents = analysisPercents_};
    if (listedFiles_) {
        ListedUnits selection = SelectListed(commands_.units, history, *listedFiles_);
        for (const std::string& path : selection.unmatched) {
            log_.Line("Warning: no source file of the build is or includes " + path);
        }
        plan.actions = std::move(selection.actions);
        TellNotListed(plan.actions);
    } else if (options_.incremental) {
        plan.actions = SelectModified(commands_.units, history, settings_);
    }
    return plan;
}

int AnalyzeRun::EndWithNothingModified(AnalyzerRunner& runner, const RunPlan& plan, const Fingerprint& contents) {
    const bool isReportWhole = !reportPath_.empty() && PathExists(reportPath_) && mark_.Matches(contents);
    if (isReportWhole) {
        std::transform(plan.actions.begin(), plan.actions.end(), outcome_.statuses.begin(), [](UnitAction action) {
            return action == UnitAction::Exclude ? AnalyzerStatus::Excluded : AnalyzerStatus::CarriedOver;
        });
        outcome_.isReportKept = true;
    } else {
        AnalyzeUnits(runner, IntermodularAnalysisMode::None, plan);
    }
    plan.history->Save();
    const int code = EndAnalysis(reportPath_);
    if (code == 0 && !isReportWhole && !reportPath_.empty()) {
        mark_.Write(contents);
    }
    log_.Line("Nothing to analyze - no modified files were found.");
    return code;
}

// What the report of an incremental run depends on, beside what its units found.
Fingerprint AnalyzeRun::ReportContents(const Fingerprint& names, UnitHistory& history) const {
    FingerprintBuilder contents;
    contents.Add(names).Add(reportPath_).Add(SourceTreeRoot(settings_));
    contents.Add(options_.suppressFile ? ReadWholeFile(*options_.suppressFile) : std::string());
    for (std::size_t unit = 0; unit < units_.size(); ++unit) {
        const bool isExcluded = IsExcluded(settings_, SourcePath(*units_[unit])) || history.IsLeftOut(unit);
        contents.Add(isExcluded ? 1 : 0);
    }
    return contents.Value();
}

void AnalyzeRun::AnalyzeUnits(AnalyzerRunner& runner, IntermodularAnalysisMode mode, const RunPlan& plan) {
    mark_.Remove();
    const std::unique_ptr<OrvlogConverter::ReportOutput> report = OpenReport(reportPath_, settings_);
    FindingChain chain(*report, base_, SourceTreeRoot(settings_));
    chain.Front().Begin();
    report->Commit();
    ReportCommitter committer(units_.size(), *report, chain.Front());
    runner.RunParallel(units_, threads_, mode, committer, plan);
    chain.Front().End();
    outcome_ = committer.Outcome();
    if (base_) {
        outcome_.hiddenFindings = chain.HiddenCount();
        outcome_.findingsByLevel[1] += base_->IsOutdated() ? 1U : 0U; // the notice of that is a finding
    }
}

// A unit that failed in an earlier stage has failed, whatever became of it later.
void AnalyzeRun::AddEarlierFailures(const RunOutcome& earlier, const char* what) {
    for (const auto& [unit, reason] : earlier.failures) {
        AnalyzerStatus& status = outcome_.statuses[unit];
        if (!IsFailure(status) && status != AnalyzerStatus::Excluded && status != AnalyzerStatus::Stopped) {
            status = earlier.statuses[unit];
            outcome_.failures.emplace(unit, what + reason);
        }
    }
}

int AnalyzeRun::EndAnalysis(const std::string& reportPath) {
    log_.Text(FailureList(commands_, outcome_));
    const InvocationCounts counts = CountInvocations(commands_, outcome_);
    if (counts.analyzed + counts.carriedOver + counts.failed + counts.stopped == 0 && counts.excluded > 0) {
        log_.Line("Nothing was analyzed: every compiler invocation is excluded or skipped.");
    }
    progress_.Finish(SummaryText(commands_, outcome_, Elapsed(), reportPath));
    const int code = CombinedResult(outcome_);
    return code == 0 && HasFailedInvocation(commands_) ? 1 : code;
}

} // namespace Orvanta
