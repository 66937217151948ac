#include "app/AnalyzeCommand.h"

#include "analysis/AnalyzerRunner.h"
#include "analysis/CoreLocator.h"
#include "analysis/RunSummary.h"
#include "app/AnalyzeOptions.h"
#include "app/FindingChain.h"
#include "app/InputReading.h"
#include "app/RunSetup.h"
#include "buildinput/CompilationDatabase.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/LockFile.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"
#include "suppress/SuppressBase.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

namespace {

using Clock = std::chrono::steady_clock;

/// One run of `analyze`, from the checked options to the exit code.
class AnalyzeRun {
public:
    explicit AnalyzeRun(const AnalyzeOptions& options)
        : options_(options), settings_(MakeRunSettings(options)), threads_(ThreadCount(options)),
          reportPath_(ReportPath(options, settings_)), log_(VerbosityOf(options)),
          progress_(options.quiet ? StdOutProgress::Display::Hidden : StdOutProgress::Display::Shown, log_) {}

    /// \throws ZelmRcException when the run's code isn't 0
    void Run() {
        if (options_.dumpLog) {
            log_.OpenFile(AbsolutePath(*options_.dumpLog));
        }
        if (options_.suppressFile) { // before the work of which a broken base would take the report
            base_ = OrvlogConverter::SuppressBase::Read(*options_.suppressFile);
        }
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
            if (IsNothingListed(commands_)) {
                log_.Line("Nothing to analyze - no files from source files list were found.");
                throw ZelmRcException(1);
            }
            throw ZelmException("No source file to analyze");
        }
        const int code = Analyze();
        if (code != 0) {
            throw ZelmRcException(code);
        }
    }

private:
    static Log::Verbosity VerbosityOf(const AnalyzeOptions& options) {
        return options.verbose ? Log::Verbosity::Verbose : Log::Verbosity::Normal;
    }

    [[nodiscard]] std::chrono::milliseconds Elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
    }

    // The folder of the report, or the current one.
    [[nodiscard]] std::string OutputFolder() const {
        return reportPath_.empty() ? CurrentDirectory() : std::string(DirectoryOf(reportPath_));
    }

    int Analyze() {
        LockFile lock;
        if (lock.Take(OutputFolder(), reportPath_.empty() ? OutputFolder() : reportPath_) ==
            LockFile::State::HeldByOther) {
            throw ZelmException("Another run is writing to " + (reportPath_.empty() ? OutputFolder() : reportPath_));
        }
        const TemporaryFolder temporaryFolder;
        const RunPlaces places = MakePlaces(temporaryFolder.Path());
        const std::unique_ptr<OrvlogConverter::ReportOutput> report = OpenReport(reportPath_, settings_);
        FindingChain chain(*report, base_, SourceTreeRoot(settings_));
        chain.Front().Begin();
        report->Commit();
        ReportCommitter committer(commands_.units.size(), *report, chain.Front());
        AnalyzerRunner runner(settings_, registry_, places, log_, progress_, stop_);
        std::vector<const CompileCommand*> units;
        units.reserve(commands_.units.size());
        for (const CompileCommand& unit : commands_.units) {
            units.push_back(&unit);
        }
        const int code = runner.RunParallel(units, threads_, IntermodularAnalysisMode::None, committer);
        chain.Front().End();
        outcome_ = committer.Outcome();
        AddBaseCounts(chain);
        ReportEnd();
        return code == 0 && HasFailedInvocation(commands_) ? 1 : code;
    }

    RunPlaces MakePlaces(const std::string& temporaryFolder) {
        RunPlaces places;
        places.corePath = CorePath();
        places.unitFolder = temporaryFolder;
        places.probeFolder = temporaryFolder;
        if (options_.dumpFiles) {
            places.unitFolder = JoinPath(OutputFolder(), ".Orvanta");
            places.unitFiles = SettingsFile::Lifetime::Keep;
            MakeFolders(places.unitFolder);
            log_.Line("The files of the units are kept in " + places.unitFolder);
        }
        return places;
    }

    std::string CorePath() {
        if (options_.corePath) {
            return AbsolutePath(*options_.corePath);
        }
        const CoreLocation core = LocateCore(ProgramDirectory());
        if (core.origin == CoreLocation::Origin::Bundled) {
            log_.Line("Using the bundled core: " + core.path);
        }
        return core.path;
    }

    void AddBaseCounts(const FindingChain& chain) {
        if (base_) {
            outcome_.hiddenFindings = chain.HiddenCount();
            outcome_.findingsByLevel[1] += base_->IsOutdated() ? 1U : 0U; // the notice of that is a finding
        }
    }

    void ReportEnd() {
        log_.Text(FailureList(commands_, outcome_));
        const InvocationCounts counts = CountInvocations(commands_, outcome_);
        if (counts.analyzed + counts.failed + counts.stopped == 0) {
            log_.Line("Nothing was analyzed: every compiler invocation is excluded or skipped.");
        }
        progress_.Finish(SummaryText(commands_, outcome_, Elapsed(), reportPath_));
    }

    const AnalyzeOptions& options_;
    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    const CompilerRegistry registry_;
    RunSettings settings_;
    unsigned threads_;
    std::string reportPath_;
    Log log_;
    StdOutProgress progress_;
    std::optional<OrvlogConverter::SuppressBase> base_; // of --suppress-file
    CollectedCommands commands_;
    RunOutcome outcome_;
};

} // namespace

void AnalyzeCommand(args::Subparser& parser) {
    const AnalyzeOptions options = ParseAnalyzeOptions(parser);
    ValidateAnalyzeOptions(options);
    AnalyzeRun(options).Run();
}

} // namespace Orvanta
