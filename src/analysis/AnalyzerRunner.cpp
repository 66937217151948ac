#include "analysis/AnalyzerRunner.h"

#include "analysis/DependencyLines.h"
#include "analysis/PassProgress.h"
#include "analysis/PathList.h"
#include "analysis/PrecompiledHeader.h"
#include "analysis/ScopedFile.h"
#include "analysis/StartableCommand.h"
#include "analysis/UnitFailure.h"
#include "analysis/WorkerPool.h"
#include "buildinput/CompilerVariables.h"
#include "platform/EnvironmentNames.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* PredefinedMacro = "ORVANTA";
constexpr std::size_t LongestSourceNamePart = 100; // of a unit's file names: file systems end names at 255 bytes
constexpr unsigned Analyzing = 0;                  // the stages as progress counts them
constexpr unsigned ParsingIncludes = 1;
constexpr unsigned Parsing = 2;

void RemoveVariable(Environment& variables, std::string_view name) {
    std::erase_if(variables, [name](const auto& variable) { return IsSameVariable(variable.first, name); });
}

Environment InvocationEnvironment(Environment variables, const Environment& ownVariables, const Environment& changes) {
    for (const Environment* const layer : {&ownVariables, &changes}) {
        for (const auto& [name, value] : *layer) {
            RemoveVariable(variables, name);
            variables.emplace(name, value);
        }
    }
    return variables;
}

// A core that can't be run at all ends the whole run, not one unit.
class CoreUnusableException : public ZelmException {
public:
    using ZelmException::ZelmException;
};

std::string EnvironmentText(const EnvironmentBlock& environment) {
    std::string text;
    for (const std::string& entry : environment.Entries()) {
        text += entry;
        text += '\n';
    }
    return text;
}

unsigned StageOf(const RunPlan& plan, IntermodularAnalysisMode mode) {
    if (plan.work == RunPlan::Work::ListDependencies) {
        return ParsingIncludes;
    }
    return mode == IntermodularAnalysisMode::FirstRun ? Parsing : Analyzing;
}

void AddArgument(ParsedCommand& command, std::vector<std::string>& list, const char* flag, const std::string& value) {
    command.keptArguments.push_back(flag + value);
    list.push_back(value);
}

} // namespace

/// What one unit's run works with.
struct AnalyzerRunner::Unit {
    const CompileCommand& invocation;
    std::string sourcePath;
    std::shared_ptr<const Compiler> model;
    ParsedCommand command;
    std::shared_ptr<const EnvironmentBlock> environment;
    UnitFiles files;

    [[nodiscard]] ProcessPlace Place() const { return {*invocation.absoluteDirectory, *environment}; }
};

std::string OrvantaFolder(const std::string& outputFolder) {
    return JoinPath(outputFolder, ".Orvanta");
}

AnalyzerRunner::AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, RunPlaces places,
                               Log& log, AnalyzerProgress& progress, const StopFlag& stop)
    : settings_(settings), registry_(registry), places_(std::move(places)), log_(log), progress_(progress), stop_(stop),
      probe_(places_.temporaryFolder, stop), visualStudio_(log),
      commonEnvironment_(std::make_shared<EnvironmentBlock>(
          InvocationEnvironment(OwnEnvironment(), {}, settings.environmentChanges))) {}

UnitResult AnalyzerRunner::Run(const AnalysisTask& task) {
    UnitResult result;
    if (ShouldEnd()) {
        result.status = AnalyzerStatus::Stopped;
        return result;
    }
    try {
        return RunUnit(task);
    } catch (const CoreUnusableException&) {
        throw;
    } catch (const std::exception& error) {
        result.status = AnalyzerStatus::Failed;
        result.reason = error.what();
    }
    return result;
}

UnitResult AnalyzerRunner::RunUnit(const AnalysisTask& task) {
    const Unit unit = PrepareUnit(task);
    UnitHistory* const history = task.plan->history;
    UnitResult result;
    const bool isCollecting = task.mode == IntermodularAnalysisMode::FirstRun;
    if (isCollecting) {
        RemoveFile(unit.files.collectedPath); // of an earlier run
    }
    if (!isCollecting && !settings_.analyzeSystemPaths && IsInSystemFolder(unit)) {
        log_.VerboseLine("  Exclusion by system folder: '" + unit.sourcePath + "'");
        if (history != nullptr) {
            history->RecordLeftOut(task.unit);
        }
        result.status = AnalyzerStatus::Excluded;
        return result;
    }
    if (log_.IsVerbose()) {
        TellPrecompiledForms(unit);
    }
    std::optional<ScopedFile> preprocessedFile;
    if (places_.unitFiles == SettingsFile::Lifetime::Remove && !isCollecting) {
        preprocessedFile.emplace(unit.files.preprocessedPath);
    }
    const UnitHistory::Moment moment = history != nullptr ? history->Begin(task.unit) : UnitHistory::Moment();
    if (IsPreprocessed(task, unit) || PreprocessUnit(unit, result)) {
        RunPreprocessedUnit(task, unit, moment, result);
    }
    if (result.status != AnalyzerStatus::Analyzed) {
        if (isCollecting) {
            RemoveFile(unit.files.collectedPath);
        }
        if (history != nullptr) {
            history->ForgetResult(task.unit);
        }
    }
    return result;
}

void AnalyzerRunner::RunPreprocessedUnit(const AnalysisTask& task, const Unit& unit, UnitHistory::Moment moment,
                                         UnitResult& result) {
    UnitHistory* const history = task.plan->history;
    const bool isCollecting = task.mode == IntermodularAnalysisMode::FirstRun;
    const SettingsFile settings(SettingsOf(unit, task.mode), unit.files.basePath, places_.unitFiles);
    std::vector<std::string> dependencies;
    if (history != nullptr || isCollecting) {
        if (!ListDependencies(unit, settings.Path(), dependencies, result)) {
            return;
        }
        if (history != nullptr && !history->CanTellWhatWasSeen(task.unit, moment, dependencies)) {
            moment = history->Begin(task.unit);
            if (!PreprocessUnit(unit, result) || !ListDependencies(unit, settings.Path(), dependencies, result)) {
                return;
            }
        }
        if (isCollecting) {
            WritePathList(unit.files.dependenciesPath, dependencies);
        } else if (task.plan->work == RunPlan::Work::Analyze) {
            task.pass->Step(ParsingIncludes, unit.sourcePath);
        }
    }
    std::optional<std::string> findings;
    if (task.plan->work == RunPlan::Work::Analyze) {
        AnalyzeUnit(unit, settings.Path(), result);
        if (result.status != AnalyzerStatus::Analyzed) {
            return;
        }
        if (history != nullptr) {
            findings = PathExists(result.fragmentPath) ? ReadWholeFile(result.fragmentPath) : std::string();
        }
    }
    if (history != nullptr) {
        history->Record(task.unit, moment, dependencies, findings);
    }
}

// A forced include is always preprocessed from its header: a precompiled form holds no text, and may be out of date.
void AnalyzerRunner::TellPrecompiledForms(const Unit& unit) const {
    for (const std::string& header : unit.command.forcedIncludes) {
        if (const std::optional<std::string> form =
                FindPrecompiledForm(JoinPath(*unit.invocation.absoluteDirectory, header), log_)) {
            log_.VerboseLine("  The header is preprocessed in place of '" + *form + "'");
        }
    }
}

std::shared_ptr<const Compiler> AnalyzerRunner::GetPreprocessor(CompilerType type) const {
    return registry_.Get(type);
}

AnalyzerRunner::Unit AnalyzerRunner::PrepareUnit(const AnalysisTask& task) {
    const CompileCommand& invocation = *task.command;
    std::shared_ptr<const Compiler> model = GetPreprocessor(invocation.compiler->type);
    std::vector<std::string> arguments = invocation.arguments.ToVector();
    arguments.front() = invocation.compiler->path;
    ParsedCommand command = ReadCommandLine(*model, arguments, invocation.source);
    if (command.compilerType != model->Type()) {
        model = GetPreprocessor(command.compilerType); // a flag makes it one of a sibling family
    }
    for (const std::string& directory : settings_.extraIncludes) {
        AddArgument(command, command.userIncludes, "-I", directory);
    }
    AddArgument(command, command.defines, "-D", PredefinedMacro);
    std::shared_ptr<const EnvironmentBlock> environment = EnvironmentOf(invocation, command);
    return {invocation,         SourcePath(invocation), std::move(model),
            std::move(command), std::move(environment), NameFiles(task.unit, invocation)};
}

std::shared_ptr<const EnvironmentBlock> AnalyzerRunner::EnvironmentOf(const CompileCommand& invocation,
                                                                      const ParsedCommand& command) {
    const bool isMsvc = IsMsvcFamily(invocation.compiler->type);
    const bool isWhole = invocation.environmentScope == EnvironmentScope::Whole;
    if (!isMsvc && !isWhole && invocation.environment->empty()) {
        return commonEnvironment_;
    }
    Environment base = isWhole ? Environment() : OwnEnvironment();
    if (isMsvc) {
        if (const auto setUp = visualStudio_.VariablesFor(*invocation.compiler, command.platformWord)) {
            base = *setUp;
        }
    }
    Environment variables =
        InvocationEnvironment(std::move(base), *invocation.environment, settings_.environmentChanges);
    if (isMsvc) {
        // Their words stand among the arguments already.
        RemoveVariable(variables, FrontArgumentsVariable);
        RemoveVariable(variables, BackArgumentsVariable);
    }
    return std::make_shared<const EnvironmentBlock>(variables);
}

UnitFiles AnalyzerRunner::NameFiles(std::size_t unit, const CompileCommand& command) const {
    const std::string_view sourceName = FileNameOf(command.SourceFile());
    const std::string name = std::to_string(unit + 1) + "_" + std::string(sourceName.substr(0, LongestSourceNamePart));
    UnitFiles files;
    files.basePath = JoinPath(places_.unitFolder, name);
    files.preprocessedPath = files.basePath + ".Orvanta.i";
    files.fragmentPath = files.basePath + ".Orvanta.findings";
    files.dependenciesPath = files.basePath + ".Orvanta.dependencies";
    files.collectedPath = JoinPath(OrvantaFolder(places_.outputFolder), name + ".Orvanta.dfo");
    return files;
}

std::string AnalyzerRunner::MergedFile() const {
    return JoinPath(OrvantaFolder(places_.outputFolder), "intermodular-merged-info.Orvanta.dfo");
}

// The performing stage takes the text that the collecting stage has left, unless a file of it has changed since.
bool AnalyzerRunner::IsPreprocessed(const AnalysisTask& task, const Unit& unit) {
    if (task.mode != IntermodularAnalysisMode::SecondRun || !PathExists(unit.files.dependenciesPath)) {
        return false;
    }
    const ScopedFile list(unit.files.dependenciesPath);
    const std::vector<std::string> dependencies = ReadPathList(list.Path());
    return PathExists(unit.files.preprocessedPath) && !changes_->HasChanged(unit.sourcePath) &&
           std::none_of(dependencies.begin(), dependencies.end(),
                        [this](const std::string& path) { return changes_->HasChanged(path); });
}

bool AnalyzerRunner::PreprocessUnit(const Unit& unit, UnitResult& result) {
    CapturedOutput output;
    try {
        const StartableCommand command(unit.model->BuildPreprocessCommand(unit.command, unit.files.preprocessedPath),
                                       unit.command, unit.files.basePath + ".rsp");
        if (RunSupervised(command.Words(), unit.Place(), stop_, output) == ProcessOutcome::Stopped) {
            result.status = AnalyzerStatus::Stopped;
            return false;
        }
        return true;
    } catch (const ProcessReturnCodeException& error) {
        const std::string_view telling = TellingLine(output.standardError);
        result.reason = telling.empty() ? error.what() : telling;
    } catch (const ProcessException& error) {
        result.reason = error.what();
    }
    ReportPreprocessingFailure(unit, output, result);
    return false;
}

void AnalyzerRunner::ReportPreprocessingFailure(const Unit& unit, const CapturedOutput& output, UnitResult& result) {
    const std::string text = "Source file can't be preprocessed!";
    log_.Line(text);
    if (log_.IsVerbose()) {
        std::string details = "Environment variables:\n" + EnvironmentText(*unit.environment);
        details += "Stdout:\n" + output.standardOutput;
        if (!output.standardError.empty()) {
            details += "\nStderr:\n" + output.standardError;
        }
        log_.VerboseLine(details);
    }
    result.status = AnalyzerStatus::PreprocessingFailed;
    result.reason = text + " " + result.reason;
    result.ownFindings.push_back(NotAnalyzedMessage(unit.sourcePath));
}

SettingsMap AnalyzerRunner::SettingsOf(const Unit& unit, IntermodularAnalysisMode mode) {
    const Language language = UnitLanguage(unit.command);
    const std::optional<FlagKind> stated = language == Language::C ? unit.command.cStandard : unit.command.cppStandard;
    std::string standard;
    if (stated) {
        standard = StandardWord(*stated, language);
    } else if (!settings_.userSettings.contains("std")) {
        standard = probe_.ProbeLanguageStandard(*unit.model, unit.command, language, unit.Place(),
                                                *unit.invocation.environment);
    }
    SettingsMap settings = BuildUnitSettings(settings_.userSettings, *unit.model, unit.command, standard, unit.files);
    AddIntermodularSettings(settings, mode, MergedFile(), unit.files.collectedPath);
    return settings;
}

// Whether the core has come to a good end; else the result says why not.
bool AnalyzerRunner::RunCore(const Unit& unit, const Arguments& command, CapturedOutput& output, UnitResult& result) {
    // The whole environment of a build is the compiler's business; the core belongs to this run.
    const bool isBuilds = unit.invocation.environmentScope == EnvironmentScope::Whole;
    const ProcessPlace place = {*unit.invocation.absoluteDirectory, isBuilds ? *commonEnvironment_ : *unit.environment};
    try {
        if (RunSupervised(command, place, stop_, output) == ProcessOutcome::Succeeded) {
            return true;
        }
        result.status = AnalyzerStatus::Stopped;
    } catch (const ProcessStartException& error) {
        if (error.WhatFailed() == ProcessStartException::Cause::Program) {
            throw CoreUnusableException(error.what());
        }
        result.status = AnalyzerStatus::CoreFailed;
        result.reason = error.what();
    } catch (const ProcessReturnCodeException& error) {
        log_.VerboseLine(error.what());
        result.status = AnalyzerStatus::CoreFailed;
        result.reason = CoreFailureReason(error);
    }
    return false;
}

bool AnalyzerRunner::ListDependencies(const Unit& unit, const std::string& settingsPath,
                                      std::vector<std::string>& dependencies, UnitResult& result) {
    CapturedOutput output;
    const Arguments command = {places_.corePath, "--cfg", settingsPath, "--display-dependencies", "--skip-analysis"};
    if (!RunCore(unit, command, output, result)) {
        return false;
    }
    dependencies = ReadDependencyLines(output.standardOutput, *unit.invocation.absoluteDirectory);
    return true;
}

void AnalyzerRunner::AnalyzeUnit(const Unit& unit, const std::string& settingsPath, UnitResult& result) {
    CapturedOutput output;
    result.fragmentPath = unit.files.fragmentPath;
    if (RunCore(unit, {places_.corePath, "--cfg", settingsPath}, output, result) && !output.standardOutput.empty() &&
        (!IsMsvcFamily(unit.model->Type()) || settings_.showCoreOutputOfMsvc)) {
        log_.Text(output.standardOutput);
    }
}

bool AnalyzerRunner::IsInSystemFolder(const Unit& unit) const {
    const std::vector<std::string>& folders = unit.command.systemIncludes;
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
        const std::string path = NormalizePath(JoinPath(*unit.invocation.absoluteDirectory, folder));
        // A root ends in its separator: as a system root it would hold every source.
        return !IsSeparator(path.back()) && unit.sourcePath.size() > path.size() && unit.sourcePath.starts_with(path) &&
               IsSeparator(unit.sourcePath[path.size()]);
    });
}

// The result of a unit with which nothing is to be done; absent for one that is to run.
std::optional<UnitResult> AnalyzerRunner::SettledResult(const AnalysisTask& task) const {
    const RunPlan& plan = *task.plan;
    const UnitAction action = plan.actions.empty() ? UnitAction::Run : plan.actions[task.unit];
    if (action == UnitAction::LeaveOut) {
        return UnitResult{.status = AnalyzerStatus::NotListed};
    }
    const bool excludes =
        task.mode == IntermodularAnalysisMode::None || task.mode == IntermodularAnalysisMode::SecondRun;
    if (const std::string path = SourcePath(*task.command); excludes && IsExcluded(settings_, path)) {
        log_.VerboseLine("  Exclusion by setting: '" + path + "'");
        return UnitResult{.status = AnalyzerStatus::Excluded};
    }
    if (action == UnitAction::Run) {
        return std::nullopt;
    }
    if (action == UnitAction::Exclude) {
        return UnitResult{.status = AnalyzerStatus::Excluded};
    }
    return UnitResult{.status = AnalyzerStatus::CarriedOver, .keptFindings = plan.history->KeptFindings(task.unit)};
}

bool AnalyzerRunner::ShouldEnd() const noexcept {
    return stop_.IsSet() || coreIsUnusable_.load();
}

int AnalyzerRunner::RunParallel(std::span<const CompileCommand* const> commands, unsigned threads,
                                IntermodularAnalysisMode mode, ResultReceiver& receiver, const RunPlan& plan) {
    if (commands.empty()) {
        throw NoCompilationCommandsToRun();
    }
    PassProgress pass(progress_, commands.size(), plan.percents);
    const unsigned stage = StageOf(plan, mode);
    const auto runTask = [&](const AnalysisTask& task) {
        UnitResult result;
        try {
            result = Run(task);
        } catch (...) {
            coreIsUnusable_.store(true);
            throw; // to the pool, which hands it to this function's WaitForTasks
        }
        const bool stopped = result.status == AnalyzerStatus::Stopped;
        receiver.Commit(task.unit, std::move(result));
        pass.CountFinished();
        if (!stopped) {
            pass.Step(stage, SourcePath(*task.command));
        }
    };

    std::size_t next = 0;
    {
        WorkerPool pool(static_cast<unsigned>(std::min<std::size_t>(threads, commands.size())));
        for (; next < commands.size() && !ShouldEnd(); ++next) {
            const AnalysisTask task = {commands[next], mode, next, &plan, &pass};
            if (std::optional<UnitResult> settled = SettledResult(task)) {
                receiver.Commit(next, std::move(*settled));
                pass.CountFinished();
                continue;
            }
            while (!pool.WaitForRoom(PollInterval) && !ShouldEnd()) {
            }
            if (ShouldEnd()) {
                break;
            }
            pool.push_task([&runTask, task] { runTask(task); });
        }
        pool.WaitForTasks();
    }
    for (; next < commands.size(); ++next) {
        receiver.Commit(next, {.status = AnalyzerStatus::Stopped});
    }
    return CombinedResult(receiver.Outcome());
}

void AnalyzerRunner::PrepareIntermodular() {
    if (!IsDirectory(places_.outputFolder)) {
        throw ZelmException("can't find output directory");
    }
    const std::string folder = OrvantaFolder(places_.outputFolder);
    try {
        MakeFolders(folder);
    } catch (const ZelmException&) {
        throw ZelmException("Couldn't create path: " + folder);
    }
    RemoveFile(MergedFile());
    changes_.emplace(places_.temporaryFolder);
}

bool AnalyzerRunner::RunMerge(std::span<const CompileCommand* const> commands) {
    const std::string folder = JoinPath(places_.temporaryFolder, "Intermodular");
    MakeFolders(folder);
    std::vector<std::string> collected;
    for (std::size_t unit = 0; unit < commands.size(); ++unit) {
        std::string path = NameFiles(unit, *commands[unit]).collectedPath;
        if (PathExists(path)) { // a unit that failed has left none
            collected.push_back(std::move(path));
        }
    }
    const std::string list = JoinPath(folder, "units.txt");
    WritePathList(list, collected);
    SettingsMap settings = {
        {"intermodular-unit-list", list}
    };
    AddIntermodularSettings(settings, IntermodularAnalysisMode::Merge, MergedFile(), "");
    const SettingsFile file(std::move(settings), JoinPath(folder, "merge"), SettingsFile::Lifetime::Remove);
    CapturedOutput output;
    return RunSupervised({places_.corePath, "--cfg", file.Path()}, {folder, *commonEnvironment_}, stop_, output) ==
           ProcessOutcome::Succeeded;
}

void AnalyzerRunner::RemoveCollected(std::span<const CompileCommand* const> commands) const noexcept {
    for (std::size_t unit = 0; unit < commands.size(); ++unit) {
        RemoveFile(NameFiles(unit, *commands[unit]).collectedPath);
    }
}

} // namespace Orvanta
