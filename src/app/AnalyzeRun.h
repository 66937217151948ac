#pragma once

#include "analysis/AnalyzerRunner.h"
#include "app/AnalyzeOptions.h"
#include "app/ReportMark.h"
#include "buildinput/BuildInput.h"
#include "compilers/CompilerRegistry.h"
#include "platform/LockFile.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"
#include "suppress/SuppressBase.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// One run of `analyze`, from the checked options to the exit code.
class AnalyzeRun {
public:
    /// `options` outlive the run.
    explicit AnalyzeRun(const AnalyzeOptions& options);

    /// \throws ZelmRcException when the run's code isn't 0
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool UsesHistory() const;
    [[nodiscard]] std::chrono::milliseconds Elapsed() const;
    [[nodiscard]] std::string OutputFolder() const;
    [[nodiscard]] RunPlaces MakePlaces(const std::string& temporaryFolder);
    [[nodiscard]] std::string CorePath();
    void TakeLocks();

    // The ways to analyze; all return the run's code.
    int Analyze();
    int AnalyzeAll(AnalyzerRunner& runner);
    int AnalyzeAcrossUnits(AnalyzerRunner& runner);
    int AnalyzeByHistory(AnalyzerRunner& runner, const std::string& corePath);

    void ReadHistory(UnitHistory& history);
    RunOutcome ListDependencies(AnalyzerRunner& runner, UnitHistory& history);
    [[nodiscard]] RunPlan SelectUnits(UnitHistory& history);
    void TellNotListed(std::span<const UnitAction> actions);
    [[nodiscard]] Fingerprint ReportContents(const Fingerprint& names, UnitHistory& history) const;
    void AnalyzeUnits(AnalyzerRunner& runner, IntermodularAnalysisMode mode, const RunPlan& plan);
    void AddEarlierFailures(const RunOutcome& earlier, const char* what);

    // The ways to end; all tell the user and return the run's code.
    int EndWithoutAnalysis(const RunOutcome& listed);
    int EndWithNothingModified(AnalyzerRunner& runner, const RunPlan& plan, const Fingerprint& contents);
    int EndAnalysis(const std::string& reportPath);

    const AnalyzeOptions& options_;
    const Clock::time_point start_ = Clock::now();
    const StopFlag& stop_ = ProcessStopFlag();
    const CompilerRegistry registry_;
    RunSettings settings_;
    unsigned threads_;
    std::string reportPath_; // empty: the findings go to standard output
    ReportMark mark_;
    Log log_;
    StdOutProgress progress_;
    LockFile reportLock_;
    LockFile folderLock_;
    std::optional<OrvlogConverter::SuppressBase> base_; // of --suppress-file
    std::optional<std::vector<std::string>> listedFiles_;
    CollectedCommands commands_;
    std::vector<const CompileCommand*> units_; // of commands_
    PercentRange analysisPercents_;            // what is left for the analysis
    RunOutcome outcome_;
};

} // namespace Orvanta
