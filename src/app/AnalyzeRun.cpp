#include "app/AnalyzeRun.h"

#include "analysis/AnalyzerRunner.h"
#include "analysis/CoreLocator.h"
#include "analysis/CoreVersion.h"
#include "analysis/ReplayBundles.h"
#include "analysis/RunSummary.h"
#include "app/AnalyzePasses.h"
#include "app/InputReading.h"
#include "app/OpenPart.h"
#include "app/OutputCheck.h"
#include "app/RunCache.h"
#include "app/RunMonitor.h"
#include "app/RunSetup.h"
#include "app/RunStatistics.h"
#include "app/RunTeller.h"
#include "app/ShardOptions.h"
#include "app/StageOptions.h"
#include "app/Version.h"
#include "buildinput/CompilationDatabase.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/TemporaryFolder.h"

#include <exception>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// What follows from the options alone: the rest is read when the run begins.
AnalyzeInput InputOf(const AnalyzeOptions& options) {
    RunSettings settings = MakeRunSettings(options);
    const unsigned threads = ThreadCount(options);
    std::string reportPath = ReportPath(options, settings);
    return {options, std::move(settings), threads, std::move(reportPath)};
}

// What a launcher starts must see the files that it is told of.
TemporaryFolder MakeTemporaryFolder(const AnalyzeOptions& options) {
    if (!options.launcher) {
        return TemporaryFolder();
    }
    const std::string shared = SharedFolderOf(options);
    MakeFolders(shared);
    return TemporaryFolder(shared);
}

bool IsOnTerminal() {
    return MessageColumns().has_value();
}

// Where there is no terminal the lines are all that can be shown.
StdOutProgress::Display LinesOf(const AnalyzeOptions& options) {
    if (options.quiet) {
        return StdOutProgress::Display::Hidden;
    }
    return ProgressFormOf(options) == ProgressForm::Status && IsOnTerminal() ? StdOutProgress::Display::SummaryOnly
                                                                             : StdOutProgress::Display::Shown;
}

// The line that says what the run was not to look at; empty when that was nothing.
std::string ShardLine(const std::optional<ShardSelection>& selection) {
    return !selection ? ""
                      : "Shard " + ShardText(selection->shard) + ": " +
                            std::to_string(selection->allUnits - selection->units.size()) + " of " +
                            std::to_string(selection->allUnits) + " source files are those of other shards\n";
}

// A shard may have no units, or none that is not left out: whether anything was analyzed is known when all are merged,
// and so is what became of the invocations that gave no unit.
int ShardResult(const RunOutcome& outcome) {
    const int code = CombinedResult(outcome);
    return code == 1 && outcome.failures.empty() ? 0 : code;
}

RunMonitor::Display StatusOf(const AnalyzeOptions& options) {
    if (options.quiet || !IsOnTerminal()) {
        return RunMonitor::Display::Nothing;
    }
    return ProgressFormOf(options) == ProgressForm::Lines ? RunMonitor::Display::Beginning
                                                          : RunMonitor::Display::Status;
}

} // namespace

AnalyzeRun::AnalyzeRun(const AnalyzeOptions& options)
    : input_(InputOf(options)), registry_(input_.settings.childLauncher),
      outputFolder_(OutputFolderOf(input_.reportPath)),
      log_(options.verbose ? Log::Verbosity::Verbose : Log::Verbosity::Normal),
      shown_(FindingsToShow(options), GateOf(options)), progress_(LinesOf(options), log_) {}

void AnalyzeRun::Run() {
    try {
        ReadInputs();
    } catch (...) {
        OpenLog(); // why the run has ended is what it is for
        throw;
    }
    RequireOutputs();
    OpenLog();
    // A stop while compilers are identified leaves part of the units: none of them may be taken for all.
    if (stop_.IsSet()) {
        throw ZelmRcException(InterruptedExitCode);
    }
    ChooseUnits();
    // Before the units are counted, so that an empty database shows that nothing was found.
    if (input_.options.dumpJson) {
        WriteCompilationDatabase(AbsolutePath(*input_.options.dumpJson), input_.commands.units);
    }
    // A shard may have none of them.
    if (input_.commands.units.empty() && (!input_.shard || input_.shard->allUnits == 0)) {
        // The skipped invocations are told all the same: they are why there is nothing to analyze.
        End({});
        throw ZelmException("No source file to analyze");
    }
    if (const int code = Analyze(); code != 0) {
        throw ZelmRcException(code);
    }
}

void AnalyzeRun::ChooseUnits() {
    const std::optional<Shard> shard = ShardOf(input_.options);
    const std::optional<IntermodularStage> stage = StageOf(input_.options);
    if (!shard && !stage) {
        return;
    }
    // What stages collect names files by their places: then these count.
    const RootMark root(stage ? std::string() : SourceTreeRoot(input_.settings));
    // From here on the units of other shards are no part of the run.
    ShardSelection selection =
        KeepShard(input_.commands, shard.value_or(Shard()), std::exchange(input_.prices, std::nullopt), root);
    if (stage) {
        input_.stage = {*stage, StageFolder(SharedFolderOf(input_.options)), selection};
    }
    if (shard) {
        input_.shard = std::move(selection);
    }
}

void AnalyzeRun::ReadInputs() {
    const AnalyzeOptions& options = input_.options;
    if (options.dumpLog) {
        // Before all else, so that the log holds all that the rest says. What stands at its path may be a source.
        log_.KeepForFile();
    }
    if (options.suppressFile) { // before the work of which a broken base would take the report
        input_.base = OrvlogConverter::SuppressBase::Read(*options.suppressFile);
    }
    if (options.costs) { // likewise
        input_.prices.emplace(*options.costs);
    }
    input_.listedFiles = ReadListedFiles(options, log_);
    input_.commands = ReadInput(options, input_.settings, registry_, log_, stop_);
}

void AnalyzeRun::RequireOutputs() const {
    for (const std::string& output : {input_.reportPath, input_.options.dumpJson.value_or(""),
                                      input_.options.dumpLog.value_or(""), input_.options.stats.value_or("")}) {
        RequireNoSource(output, input_.commands.units);
    }
}

void AnalyzeRun::OpenLog() {
    if (input_.options.dumpLog) {
        log_.OpenFile(AbsolutePath(*input_.options.dumpLog));
    }
}

int AnalyzeRun::Analyze() {
    const RunLocks locks = TakeLocks();
    std::optional<RunStatistics> statistics;
    if (input_.options.stats) { // before the work that it is to tell of
        statistics.emplace(AbsolutePath(*input_.options.stats));
    }
    // Inside the locks: what goes at the end goes before another run may begin.
    const TemporaryFolder temporaryFolder = MakeTemporaryFolder(input_.options);
    const CoreLocation core = FindCore();
    RunPlaces places = MakePlaces(core.path, temporaryFolder.Path());
    // The core's first start: one that can't be started leaves the earlier report as it was.
    places.coreVersion = VersionOf(core, temporaryFolder.Path());
    log_.VerboseLine("Version of the core: " + places.coreVersion);
    EnterStage(places);
    cache_ = MakeResultCache(input_.settings, places);
    places.cache = cache_.get();
    if (!input_.settings.childLauncher.empty()) {
        log_.VerboseLine("Compilers and the core are started by: " + CommandLineText(input_.settings.childLauncher));
    }
    AnalyzerRunner runner(input_.settings, registry_, places, log_, progress_, stop_);
    RunMonitor monitor(input_.commands.units, input_.threads, locks.Folder(), StatusOf(input_.options), log_);
    std::optional<ReplayBundles> bundles;
    if (std::optional<BundleWishes> wishes = BundlesOf(input_.options)) {
        bundles.emplace(std::move(*wishes), BundleMakers{Version, places.coreVersion}, log_);
        runner.OfferTo(&*bundles);
    }
    AnalyzePasses passes(input_, places, runner, monitor, {shown_, log_, stop_});
    std::exception_ptr failure;
    try {
        passes.Run();
    } catch (...) {
        // Kept until the end has been told: what was found up to here is worth it.
        failure = std::current_exception();
    }
    monitor.KeepCosts();
    if (bundles && bundles->Count() > 0) {
        log_.Line("Replay bundles: " + std::to_string(bundles->Count()) + " in " +
                  AbsolutePath(*input_.options.bundle));
    }
    End(passes.Ending(), monitor.Costs());
    try {
        if (statistics) {
            statistics->Write(CollectedInput(input_.commands), passes.Ending().outcome, monitor.Costs());
        }
    } catch (...) {
        failure = failure ? failure : std::current_exception(); // what ended the passes is told first
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    return ResultOf(passes.Ending());
}

int AnalyzeRun::ResultOf(const RunEnding& ending) const {
    // Nothing was to be analyzed, and the user has said that this is no error.
    if (ending.selectsNothing && input_.options.allowEmpty) {
        return 0;
    }
    if (input_.stage && input_.stage->stage == IntermodularStage::Link) {
        return stop_.IsSet() ? InterruptedExitCode : 0; // what could not be collected is told by the stages beside it
    }
    if (input_.shard) {
        return ShardResult(ending.outcome);
    }
    return RunResult(ending.outcome, CollectedInput(input_.commands), shown_);
}

RunLocks AnalyzeRun::TakeLocks() {
    const AnalyzeOptions& options = input_.options;
    RunLocks locks;
    if (!input_.reportPath.empty()) { // what is written to standard output needs no lock
        locks.TakeReport(input_.reportPath, stop_, log_);
    }
    // The three that write into that folder.
    if (UsesHistory(input_) || (options.intermodular && !input_.stage) || options.dumpFiles) {
        locks.TakeShared(OrvantaFolder(outputFolder_), stop_, log_);
    }
    if (const std::string folder = StageFolderToLock(); !folder.empty()) {
        MakeFolders(std::string(DirectoryOf(folder)));
        locks.TakeShared(folder, stop_, log_);
    }
    return locks;
}

std::string AnalyzeRun::StageFolderToLock() const {
    if (input_.stage) {
        switch (input_.stage->stage) {
        case IntermodularStage::Collect:
            return input_.stage->folder.FolderOf(input_.stage->selection.shard);
        case IntermodularStage::Link:
            return input_.stage->folder.LinkedFolder();
        case IntermodularStage::Perform:
            break;
        }
    }
    return "";
}

void AnalyzeRun::EnterStage(RunPlaces& places) {
    if (!input_.stage) {
        return;
    }
    StageInput& stage = *input_.stage;
    if (stage.stage == IntermodularStage::Collect) {
        places.collectedPathOf = [&stage](std::size_t unit) {
            return stage.folder.UnitFile(stage.selection.shard, stage.selection.units[unit]);
        };
        return;
    }
    stage.collected = stage.folder.ReadCollected(MakersOf(input_, stage.selection, places));
    if (stage.stage == IntermodularStage::Perform) {
        stage.folder.RequireLinked(stage.collected);
    }
    places.mergedFile = stage.folder.MergedFile();
    places.collectedPathOf = [&stage](std::size_t unit) {
        const std::size_t number = stage.selection.units[unit];
        return stage.folder.UnitFile({stage.collected.shardOf[number], stage.collected.shards}, number);
    };
}

RunPlaces AnalyzeRun::MakePlaces(const std::string& corePath, const std::string& temporaryFolder) {
    RunPlaces places;
    places.corePath = corePath;
    places.unitFolder = temporaryFolder;
    places.temporaryFolder = temporaryFolder;
    places.outputFolder = outputFolder_;
    places.mergedFile = JoinPath(OrvantaFolder(outputFolder_), MergedFileName);
    if (input_.options.dumpFiles) {
        places.unitFolder = OrvantaFolder(outputFolder_);
        places.unitFiles = SettingsFile::Lifetime::Keep;
        MakeFolders(places.unitFolder);
        log_.Line("The files of the units are kept in " + places.unitFolder);
    }
    return places;
}

std::string AnalyzeRun::VersionOf(const CoreLocation& core, const std::string& folder) {
    const CoreAnswer answer = AskCoreVersion(core.path, folder, stop_, input_.settings.childLauncher);
    // Another core may not know the question. Ours does, and fails when its engine is missing: then every unit would,
    // but not a mere listing of what they include.
    const bool isListingOnly = RegenerationOf(input_.options) == RegenerateDependInfoOption::SkipAnalysis;
    if (core.origin == CoreLocation::Origin::Bundled && !answer.complaint.empty() && !isListingOnly) {
        throw ZelmException(answer.complaint);
    }
    // What it runs and what it lacks, before the first unit.
    if (!answer.notes.empty()) {
        log_.Line(answer.notes);
    }
    return answer.version;
}

CoreLocation AnalyzeRun::FindCore() {
    if (input_.options.corePath) {
        return {AbsolutePath(*input_.options.corePath)};
    }
    CoreLocation core = LocateCore(ProgramDirectory());
    if (core.origin == CoreLocation::Origin::Bundled) {
        log_.Line("Using the bundled core: " + core.path);
    }
    return core;
}

void AnalyzeRun::End(const RunEnding& ending, const std::vector<UnitCost>& costs) {
    const RunOutcome& outcome = ending.outcome;
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
    const CollectedInput input(input_.commands);
    const RunTeller teller(input_.options, input, shown_, log_);
    // Ahead of the summary, which stays in sight when there are many.
    teller.TellFailures(outcome);
    if (ending.summary.empty()) {
        teller.TellNotes(outcome);
        progress_.Finish(SummaryText("Analysis finished", input, outcome, elapsed, ending.reportPath) +
                         ShardLine(input_.shard) + HitsText(cache_.get()));
    } else {
        progress_.Finish(ending.summary);
    }
    teller.TellTimes(costs);
    if (cache_ && !cache_->Fault().empty()) {
        log_.Line("Warning: the cache of results did not work: " + cache_->Fault());
    }
    if (!ending.lastLine.empty()) {
        log_.Line(ending.lastLine);
    }
    if (!ending.reportPath.empty()) {
        teller.ShowFindings();
    }
}

} // namespace Orvanta
