#pragma once

#include "analysis/AnalyzerStatus.h"
#include "analysis/Progress.h"
#include "analysis/ReportCommitter.h"
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
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// There is no compile command left to run. Only the entry catches it.
class NoCompilationCommandsToRun : public ZelmException {
public:
    NoCompilationCommandsToRun() : ZelmException("No compilation units were found.") {}
};

/// One queued unit.
struct AnalysisTask {
    const CompileCommand* command = nullptr;
    IntermodularAnalysisMode mode = IntermodularAnalysisMode::None;
    std::size_t unit = 0; ///< position among the run's units
};

/// Where a run finds its core and puts its files.
struct RunPlaces {
    std::string corePath;
    std::string unitFolder;  ///< takes the files of the units; exists
    std::string probeFolder; ///< takes the files of the standard probe; exists
    SettingsFile::Lifetime unitFiles = SettingsFile::Lifetime::Remove; ///< of the preprocessed and the settings files
};

/// The code of a run that the user stopped.
inline constexpr int InterruptedExitCode = 130;

/// Analyzes units: preprocesses each with its compiler and hands it to the core. `Run` may be called by any number of
/// threads at once.
class AnalyzerRunner {
public:
    /// All must outlive the runner.
    AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, RunPlaces places, Log& log,
                   AnalyzerProgress& progress, const StopFlag& stop);

    /// Analyzes one unit. What goes wrong with it is its result.
    [[nodiscard]] UnitResult Run(const AnalysisTask& task);

    /// Analyzes the units with `threads` workers, hands their results to `committer` and returns the run's exit code: 0
    /// when every unit that was not excluded was analyzed, 1 when one failed or none was analyzed, 130 after a stop.
    /// \throws NoCompilationCommandsToRun for an empty list, ZelmException when the core can't be started at all
    int RunParallel(std::span<const CompileCommand* const> commands, unsigned threads, IntermodularAnalysisMode mode,
                    ReportCommitter& committer);

private:
    struct Unit;

    [[nodiscard]] std::shared_ptr<const Compiler> GetPreprocessor(CompilerType type) const;
    [[nodiscard]] Unit PrepareUnit(const AnalysisTask& task);
    [[nodiscard]] std::shared_ptr<const EnvironmentBlock> EnvironmentOf(const CompileCommand& invocation,
                                                                        const ParsedCommand& command);
    [[nodiscard]] UnitFiles NameFiles(const AnalysisTask& task) const;
    UnitResult RunUnit(const AnalysisTask& task);
    void TellPrecompiledForms(const Unit& unit) const;
    bool PreprocessUnit(const Unit& unit, UnitResult& result);
    void ReportPreprocessingFailure(const Unit& unit, const CapturedOutput& output, UnitResult& result);
    [[nodiscard]] SettingsMap SettingsOf(const Unit& unit);
    void RunCore(const Unit& unit, const std::string& settingsPath, UnitResult& result);
    [[nodiscard]] bool IsInSystemFolder(const Unit& unit) const;
    [[nodiscard]] bool IsExcluded(const std::string& path, IntermodularAnalysisMode mode) const;
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
    std::atomic<bool> coreIsUnusable_ = false;
};

/// The absolute, normalised path of a unit's source.
[[nodiscard]] std::string SourcePath(const CompileCommand& command);

/// The exit code that the outcome of a run stands for.
[[nodiscard]] int CombinedResult(const RunOutcome& outcome) noexcept;

} // namespace Orvanta
