#include "app/MergeCommand.h"

#include "analysis/ReportCommitter.h"
#include "analysis/RunSummary.h"
#include "app/AnalyzeOptions.h"
#include "app/FindingChain.h"
#include "app/OptionChecks.h"
#include "app/OutputCheck.h"
#include "app/RunLocks.h"
#include "app/RunSetup.h"
#include "app/RunStatistics.h"
#include "app/RunTeller.h"
#include "app/TopLevel.h"
#include "app/Version.h"
#include "history/UnitIdentities.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "report/DuplicateFilter.h"
#include "report/Exceptions.h"
#include "shards/PartSet.h"

#include <args.hxx>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

/// What the command line says.
struct MergeOptions {
    AnalyzeOptions shared; ///< those that `analyze` has too
    bool allowMissing = false;
    std::vector<std::string> parts;
};

MergeOptions ParseOptions(args::Subparser& parser) {
    constexpr std::string_view Shared[] = {"output-file", "quiet", "verbose", "show", "fail-on", "stats"};
    args::PositionalList<std::string> parts(parser, "PART", "Parts that 'analyze --shard' has written",
                                            args::Options::Required);
    args::Flag allowMissing(parser, "allow-missing",
                            "Write the report of what there is when shards are missing or were stopped, and end "
                            "with exit code 1",
                            {"allow-missing"});
    MergeOptions options;
    options.shared = ParseSharedOptions(parser, Shared);
    options.allowMissing = allowMissing.Matched();
    options.parts = parts.Get();
    return options;
}

void ValidateOptions(const MergeOptions& options) {
    const std::vector<std::optional<std::string>> parts(options.parts.begin(), options.parts.end());
    const std::string output = options.shared.outputFile.value_or("");
    const std::string stats = options.shared.stats.value_or("");
    for (const std::string& part : options.parts) {
        if (!IsRegularFile(part)) {
            throw ZelmException("Part doesn't exist: " + part);
        }
    }
    if (FileNameOf(output).ends_with(PartExtension)) {
        throw ZelmException("Wrong value of --output-file: \"" + output + "\", expected the name of a report");
    }
    RequireUsableStats(options.shared);
    RequireNoInput(output, parts);
    RequireNoInput(stats, parts);
}

/// One run of `merge`, from the checked options to the exit code.
class MergeRun {
public:
    /// `options` outlive the run.
    explicit MergeRun(const MergeOptions& options)
        : options_(options), parts_(options.parts), settings_(SettingsOf(parts_.Head())),
          reportPath_(ReportPath(options.shared, settings_)),
          log_(options.shared.verbose ? Log::Verbosity::Verbose : Log::Verbosity::Normal),
          shown_(FindingsToShow(options.shared), GateOf(options.shared)), gaps_(parts_.Gaps()) {}

    /// Returns the run's code.
    [[nodiscard]] int Run() {
        RequireWhole();
        RunLocks locks;
        if (!reportPath_.empty()) {
            locks.TakeReport(reportPath_, stop_, log_);
        }
        std::optional<RunStatistics> statistics;
        if (options_.shared.stats) {
            statistics.emplace(AbsolutePath(*options_.shared.stats));
        }
        const RunOutcome outcome = WriteReport();
        End(outcome);
        if (statistics) {
            statistics->Write(parts_, outcome, costs_);
        }
        return gaps_.empty() ? RunResult(outcome, parts_, shown_) : 1;
    }

private:
    // As far as a report is shaped by settings.
    static RunSettings SettingsOf(const PartHead& head) {
        RunSettings settings;
        ApplySettings(settings, head.reportSettings);
        return settings;
    }

    // The report that this program makes must be the one that the shards' own would make.
    void RequireWhole() const {
        const PartMakers& makers = parts_.Head().makers;
        if (makers.ownVersion != Version || makers.resultVersion != ResultVersion) {
            throw ZelmException("The parts were written by another version of this program: " + makers.ownVersion);
        }
        if (!gaps_.empty() && !options_.allowMissing) {
            throw ZelmException(gaps_.substr(0, gaps_.size() - 1),
                                "With --allow-missing the report of what there is is written");
        }
    }

    // The road of a run: only the results come from elsewhere.
    [[nodiscard]] RunOutcome WriteReport() {
        const std::unique_ptr<OrvlogConverter::ReportOutput> report = OpenWholeReport(reportPath_, settings_);
        FindingChain chain(*report, std::nullopt, shown_, {SourceTreeRoot(settings_), parts_.Head().pathRules});
        chain.Front().Begin();
        for (const OrvlogConverter::ReportMessage& notice : parts_.Head().notices) {
            chain.Front().Write(notice);
        }
        ReportCommitter committer(parts_.UnitCount(), *report, chain.Front(),
                                  [](std::size_t) { return std::string(); });
        std::unordered_set<Fingerprint, FingerprintHash> hidden;
        for (std::size_t unit = 0; unit < parts_.UnitCount(); ++unit) {
            if (stop_.IsSet()) {
                throw OrvlogConverter::StoppedException();
            }
            PartResult read = parts_.Next();
            hidden.insert(read.hiddenFindings.begin(), read.hiddenFindings.end());
            costs_.push_back(read.result.cost);
            committer.Commit(unit, std::move(read.result));
        }
        chain.Front().End();
        RunOutcome outcome = committer.Outcome();
        for (const OrvlogConverter::ReportMessage& notice : parts_.Head().notices) {
            auto& levels = outcome.findingsByLevel;
            ++levels[notice.level < levels.size() ? notice.level : 0];
        }
        if (parts_.Head().hasBase) {
            outcome.hiddenFindings = hidden.size();
        }
        return outcome;
    }

    void End(const RunOutcome& outcome) {
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
        const RunTeller teller(options_.shared, parts_, shown_, log_);
        teller.TellFailures(outcome);
        teller.TellNotes(outcome);
        if (!options_.shared.quiet) {
            log_.Text(SummaryText(std::to_string(parts_.PartCount()) + " parts merged", parts_, outcome, elapsed,
                                  reportPath_));
        }
        teller.TellTimes(costs_);
        log_.Text(gaps_);
        if (!reportPath_.empty()) {
            teller.ShowFindings();
        }
    }

    using Clock = std::chrono::steady_clock;

    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    const MergeOptions& options_;
    PartSet parts_;
    RunSettings settings_;
    std::string reportPath_;
    Log log_;
    ShownFindings shown_;
    std::string gaps_; // what of the run is missing; empty for nothing
    std::vector<UnitCost> costs_;
};

} // namespace

void MergeCommand(args::Subparser& parser) {
    const MergeOptions options = ParseOptions(parser);
    ValidateOptions(options);
    MakeRoomFor(options.shared.outputFile.value_or(""));
    if (const int code = MergeRun(options).Run(); code != 0) {
        throw ZelmRcException(code);
    }
}

} // namespace Orvanta
