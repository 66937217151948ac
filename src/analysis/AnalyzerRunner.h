#pragma once

#include "analysis/AnalyzerStatus.h"
#include "analysis/FileChanges.h"
#include "analysis/Progress.h"
#include "analysis/RunOutcome.h"
#include "analysis/RunPlan.h"
#include "analysis/StandardProbe.h"
#include "analysis/UnitResult.h"
#include "analysis/UnitSettings.h"
#include "analysis/VisualStudioEnvironment.h"
#include "buildinput/CompileCommand.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Exceptions.h"
#include "settings/RunSettings.h"
#include "settings/SettingsFile.h"

#include <atomic>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// There is no compile command left to run. Only the entry catches it.
class NoCompilationCommandsToRun : public ZelmException {
public:
    NoCompilationCommandsToRun() : ZelmException("No compilation units were found.") {}
};

class PassProgress;

/// One queued unit.
struct AnalysisTask {
    const CompileCommand* command = nullptr;
    IntermodularAnalysisMode mode = IntermodularAnalysisMode::None;
    std::size_t unit = 0;          ///< position among the run's units
    const RunPlan* plan = nullptr; ///< not null
    PassProgress* pass = nullptr;  ///< not null
};

/// Where a run finds its core and puts its files.
struct RunPlaces {
    std::string corePath;
    std::string unitFolder;      ///< takes the files of the units; exists
    std::string temporaryFolder; ///< takes all other files that go with the run; exists
    std::string outputFolder;    ///< of the report: what later runs and stages need lies in ".Orvanta" in there
    SettingsFile::Lifetime unitFiles = SettingsFile::Lifetime::Remove; ///< of the preprocessed and the settings files
};

/// The folder in the output folder that takes what later runs and stages need.
[[nodiscard]] std::string OrvantaFolder(const std::string& outputFolder);

/// Analyzes units: preprocesses each with its compiler and hands it to the core. `Run` may be called by any number of
/// threads at once.
class AnalyzerRunner {
public:
    /// All must outlive the runner.
    AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, RunPlaces places, Log& log,
                   AnalyzerProgress& progress, const StopFlag& stop);

    /// Analyzes one unit. What goes wrong with it is its result.
    [[nodiscard]] UnitResult Run(const AnalysisTask& task);

    /// Goes through the units with `threads` workers, does with each what `plan` says, hands the results to `receiver`
    /// and returns the CombinedResult of what that makes of them. \throws NoCompilationCommandsToRun for an empty list,
    /// ZelmException when the core can't be started at all
    int RunParallel(std::span<const CompileCommand* const> commands, unsigned threads, IntermodularAnalysisMode mode,
                    ResultReceiver& receiver, const RunPlan& plan = {});

    /// To be called before the first of the three stages: makes the folder that takes what they leave.
    /// \throws ZelmException when there is no output folder, or the folder can't be made
    void PrepareIntermodular();

    /// Lets the core link what the first run has collected of these units.
    /// \throws ProcessException when the core fails, ZelmException when a file can't be written
    /// \return whether it came to its end; false after a stop
    bool RunMerge(std::span<const CompileCommand* const> commands);

    /// Removes what the first run has collected.
    void RemoveCollected(std::span<const CompileCommand* const> commands) const noexcept;

private:
    struct Unit;

    [[nodiscard]] std::shared_ptr<const Compiler> GetPreprocessor(CompilerType type) const;
    [[nodiscard]] Unit PrepareUnit(const AnalysisTask& task);
    [[nodiscard]] std::shared_ptr<const EnvironmentBlock> EnvironmentOf(const CompileCommand& invocation,
                                                                        const ParsedCommand& command);
    [[nodiscard]] UnitFiles NameFiles(std::size_t unit, const CompileCommand& command) const;
    [[nodiscard]] std::string MergedFile() const;
    UnitResult RunUnit(const AnalysisTask& task);
    void RunPreprocessedUnit(const AnalysisTask& task, const Unit& unit, std::optional<UnitWatch> seen,
                             UnitResult& result);
    void TellPrecompiledForms(const Unit& unit) const;
    bool IsPreprocessed(const AnalysisTask& task, const Unit& unit);
    bool PreprocessUnit(const Unit& unit, UnitResult& result);
    void ReportPreprocessingFailure(const Unit& unit, const CapturedOutput& output, UnitResult& result);
    [[nodiscard]] SettingsMap SettingsOf(const Unit& unit, IntermodularAnalysisMode mode);
    bool RunCore(const Unit& unit, const Arguments& command, CapturedOutput& output, UnitResult& result);
    bool ListDependencies(const Unit& unit, const std::string& settingsPath, std::vector<std::string>& dependencies,
                          UnitResult& result);
    void AnalyzeUnit(const Unit& unit, const std::string& settingsPath, UnitResult& result);
    [[nodiscard]] bool IsInSystemFolder(const Unit& unit) const;
    [[nodiscard]] std::optional<UnitResult> SettledResult(const AnalysisTask& task) const;
    [[nodiscard]] bool ShouldEnd() const noexcept;

    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    RunPlaces places_;
    Log& log_;
    AnalyzerProgress& progress_;
    const StopFlag& stop_;
    StandardProbe probe_;
    VisualStudioEnvironment visualStudio_;
    std::shared_ptr<const EnvironmentBlock> commonEnvironment_; // of invocations without variables of their own
    std::optional<FileChanges> changes_;                        // since the first stage began
    std::atomic<bool> coreIsUnusable_ = false;
};

} // namespace Orvanta
