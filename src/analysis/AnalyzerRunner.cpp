#include "analysis/AnalyzerRunner.h"

#include "analysis/PrecompiledHeader.h"
#include "analysis/ScopedFile.h"
#include "analysis/StartableCommand.h"
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
constexpr std::size_t LongestFailureText = 2000;   // of a core's own words in the list of failures

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

OrvlogConverter::ReportMessage NotAnalyzedMessage(std::string sourcePath) {
    OrvlogConverter::ReportMessage message;
    message.code = "V008";
    message.message = "Unable to start the analysis on this file.";
    message.level = 1;
    OrvlogConverter::MessagePosition position;
    position.file = std::move(sourcePath);
    position.line = 1;
    message.positions.push_back(std::move(position));
    return message;
}

// The command and its code, then what the core said about it.
std::string CoreFailureReason(std::string_view fullText, const CapturedOutput& output) {
    std::string reason(fullText.substr(0, fullText.find("\nStdout:\n")));
    const std::string_view said = Trim(output.standardError.empty() ? output.standardOutput : output.standardError);
    if (!said.empty()) {
        reason += '\n';
        reason += said.substr(0, LongestFailureText);
    }
    return reason;
}

std::string EnvironmentText(const EnvironmentBlock& environment) {
    std::string text;
    for (const std::string& entry : environment.Entries()) {
        text += entry;
        text += '\n';
    }
    return text;
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

std::string SourcePath(const CompileCommand& command) {
    return NormalizePath(JoinPath(*command.absoluteDirectory, command.SourceFile()));
}

int CombinedResult(const RunOutcome& outcome) noexcept {
    const auto count = [&](auto predicate) {
        return std::count_if(outcome.statuses.begin(), outcome.statuses.end(), predicate);
    };
    if (count([](AnalyzerStatus status) { return status == AnalyzerStatus::Stopped; }) > 0) {
        return InterruptedExitCode;
    }
    const bool someFailed = count(IsFailure) > 0;
    const bool noneAnalyzed = count([](AnalyzerStatus status) { return status == AnalyzerStatus::Analyzed; }) == 0;
    return someFailed || noneAnalyzed ? 1 : 0;
}

AnalyzerRunner::AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, RunPlaces places,
                               Log& log, AnalyzerProgress& progress, const StopFlag& stop)
    : settings_(settings), registry_(registry), places_(std::move(places)), log_(log), progress_(progress), stop_(stop),
      probe_(places_.probeFolder, stop), visualStudio_(log),
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
    UnitResult result;
    if (!settings_.analyzeSystemPaths && IsInSystemFolder(unit)) {
        log_.VerboseLine("  Exclusion by system folder: '" + unit.sourcePath + "'");
        result.status = AnalyzerStatus::Excluded;
        return result;
    }
    if (log_.IsVerbose()) {
        TellPrecompiledForms(unit);
    }
    std::optional<ScopedFile> preprocessedFile;
    if (places_.unitFiles == SettingsFile::Lifetime::Remove) {
        preprocessedFile.emplace(unit.files.preprocessedPath);
    }
    if (PreprocessUnit(unit, result)) {
        const SettingsFile settings(SettingsOf(unit), unit.files.basePath, places_.unitFiles);
        RunCore(unit, settings.Path(), result);
    }
    return result;
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
            std::move(command), std::move(environment), NameFiles(task)};
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

UnitFiles AnalyzerRunner::NameFiles(const AnalysisTask& task) const {
    const std::string_view sourceName = FileNameOf(task.command->SourceFile());
    UnitFiles files;
    files.basePath = JoinPath(places_.unitFolder, std::to_string(task.unit + 1) + "_" +
                                                      std::string(sourceName.substr(0, LongestSourceNamePart)));
    files.preprocessedPath = files.basePath + ".Orvanta.i";
    files.fragmentPath = files.basePath + ".Orvanta.findings";
    return files;
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

SettingsMap AnalyzerRunner::SettingsOf(const Unit& unit) {
    const Language language = UnitLanguage(unit.command);
    const std::optional<FlagKind> stated = language == Language::C ? unit.command.cStandard : unit.command.cppStandard;
    std::string standard;
    if (stated) {
        standard = StandardWord(*stated, language);
    } else if (!settings_.userSettings.contains("std")) {
        standard = probe_.ProbeLanguageStandard(*unit.model, unit.command, language, unit.Place(),
                                                *unit.invocation.environment);
    }
    return BuildUnitSettings(settings_.userSettings, *unit.model, unit.command, standard, unit.files);
}

void AnalyzerRunner::RunCore(const Unit& unit, const std::string& settingsPath, UnitResult& result) {
    const Arguments command = {places_.corePath, "--cfg", settingsPath};
    CapturedOutput output;
    // The whole environment of a build is the compiler's business; the core belongs to this run.
    const bool isBuilds = unit.invocation.environmentScope == EnvironmentScope::Whole;
    const ProcessPlace place = {*unit.invocation.absoluteDirectory, isBuilds ? *commonEnvironment_ : *unit.environment};
    try {
        result.fragmentPath = unit.files.fragmentPath;
        if (RunSupervised(command, place, stop_, output) == ProcessOutcome::Stopped) {
            result.status = AnalyzerStatus::Stopped;
            return;
        }
        if (!output.standardOutput.empty() && (!IsMsvcFamily(unit.model->Type()) || settings_.showCoreOutputOfMsvc)) {
            log_.Text(output.standardOutput);
        }
    } catch (const ProcessStartException& error) {
        if (error.WhatFailed() == ProcessStartException::Cause::Program) {
            throw CoreUnusableException(error.what());
        }
        result.status = AnalyzerStatus::CoreFailed;
        result.reason = error.what();
    } catch (const ProcessReturnCodeException& error) {
        log_.VerboseLine(error.what());
        result.status = AnalyzerStatus::CoreFailed;
        result.reason = CoreFailureReason(error.what(), output);
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

bool AnalyzerRunner::IsExcluded(const std::string& path, IntermodularAnalysisMode mode) const {
    if (mode == IntermodularAnalysisMode::FirstRun || mode == IntermodularAnalysisMode::Merge) {
        return false;
    }
    if (!settings_.onlyPaths.IsEmpty() && !settings_.onlyPaths.Matches(path)) {
        return true;
    }
    if (!settings_.exclusions.Matches(path)) {
        return false;
    }
    log_.VerboseLine("  Exclusion by setting: '" + path + "'");
    return true;
}

bool AnalyzerRunner::ShouldEnd() const noexcept {
    return stop_.IsSet() || coreIsUnusable_.load();
}

int AnalyzerRunner::RunParallel(std::span<const CompileCommand* const> commands, unsigned threads,
                                IntermodularAnalysisMode mode, ReportCommitter& committer) {
    if (commands.empty()) {
        throw NoCompilationCommandsToRun();
    }
    std::atomic<std::size_t> finished = 0;
    const auto runTask = [&](const AnalysisTask& task) {
        UnitResult result;
        try {
            result = Run(task);
        } catch (...) {
            coreIsUnusable_.store(true);
            throw; // to the pool, which hands it to this function's WaitForTasks
        }
        const bool stopped = result.status == AnalyzerStatus::Stopped;
        committer.Commit(task.unit, std::move(result));
        const std::size_t done = ++finished;
        if (!stopped) {
            progress_.Step(static_cast<unsigned>(100 * done / commands.size()), 0, SourcePath(*task.command));
        }
    };

    std::size_t next = 0;
    {
        WorkerPool pool(static_cast<unsigned>(std::min<std::size_t>(threads, commands.size())));
        for (; next < commands.size() && !ShouldEnd(); ++next) {
            const AnalysisTask task = {commands[next], mode, next};
            if (IsExcluded(SourcePath(*task.command), mode)) {
                committer.Commit(next, {.status = AnalyzerStatus::Excluded});
                ++finished;
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
        committer.Commit(next, {.status = AnalyzerStatus::Stopped});
    }
    return CombinedResult(committer.Outcome());
}

} // namespace Orvanta
