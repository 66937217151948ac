#include "analysis/UnitRun.h"

#include "analysis/DependencyLines.h"
#include "analysis/FileChanges.h"
#include "analysis/MemoryDeath.h"
#include "analysis/ModuleImports.h"
#include "analysis/PathList.h"
#include "analysis/PrecompiledHeader.h"
#include "analysis/ProcessRun.h"
#include "analysis/ReplayBundles.h"
#include "analysis/StartableCommand.h"
#include "analysis/UnitFailure.h"
#include "compilers/Compiler.h"
#include "history/RunJournal.h"
#include "history/UnitHistory.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/LineMarker.h"
#include "platform/Paths.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

std::string EnvironmentText(const EnvironmentBlock& environment) {
    std::string text;
    for (const std::string& entry : environment.Entries()) {
        text += entry;
        text += '\n';
    }
    return text;
}

/// Afterwards nothing is at `path` that an earlier run could have left there.
void RequireNone(const std::string& path, const RunPlaces& places) {
    if (places.unitFiles == SettingsFile::Lifetime::Remove) {
        return; // the folder is new
    }
    RemoveFile(path);
    // As one that another program holds open on Windows: it would be taken for this run's.
    if (PathExists(path)) {
        throw FileException("Can't remove", path, "it is of an earlier run");
    }
}

// A forced include is always preprocessed from its header: a precompiled form holds no text, and may be out of date.
void TellPrecompiledForms(const UnitPlan& plan, Log& log) {
    for (const std::string& header : plan.parsed.forcedIncludes) {
        if (const std::optional<std::string> form = FindPrecompiledForm(JoinPath(plan.Directory(), header), log)) {
            log.VerboseLine("  The header is preprocessed in place of '" + *form + "'");
        }
    }
}

// What the log shows of it depends on the verbosity; the reason goes into the list of failures.
UnitFailure PreprocessingFailure(const UnitPlan& plan, std::string_view reason, const CapturedOutput& output,
                                 Log& log) {
    std::string text = "Source file can't be preprocessed!";
    if (log.IsVerbose()) {
        std::string details = plan.sourcePath + ": " + std::string(reason) + "\n" + text + "\n";
        details += "Environment variables:\n" + EnvironmentText(*plan.environment);
        details += "Stdout:\n" + output.standardOutput;
        if (!output.standardError.empty()) {
            details += "\nStderr:\n" + output.standardError;
        }
        log.VerboseLine(details);
    }
    text.append(" ").append(reason);
    return {AnalyzerStatus::PreprocessingFailed, std::move(text)};
}

// Spares the look at the texts of nearly all builds.
bool MayImportModules(const UnitPlan& plan) {
    const auto standard = plan.settings.find("std");
    return plan.parsed.effects.Has(FlagEffect::UsesModules) ||
           (standard != plan.settings.end() &&
            standard->second == StandardWord(FlagKind::StandardCpp20, Language::Cpp) &&
            UnitLanguage(plan.parsed) == Language::Cpp);
}

// A failure has thrown by then: only the end and a stop are left.
AnalyzerStatus StatusAfter(ProcessOutcome lastStep) {
    return lastStep == ProcessOutcome::Succeeded ? AnalyzerStatus::Analyzed : AnalyzerStatus::Stopped;
}

} // namespace

UnitResult UnitRun::Run(const UnitWork& work) {
    const auto begin = std::chrono::steady_clock::now();
    UnitResult result = ResultOf(work);
    // Asked once: what is beside it may change.
    result.runsAgain = isOutOfMemory_ && IsFailure(result.status) && context_.mayRunAgain && context_.mayRunAgain();
    if (context_.bundles != nullptr && !result.runsAgain) {
        // While the files of the unit are there.
        const auto elapsed = std::chrono::steady_clock::now() - begin;
        context_.bundles->Offer({plan_, evidence_, result, std::chrono::duration_cast<std::chrono::seconds>(elapsed)});
    }
    return result;
}

UnitResult UnitRun::ResultOf(const UnitWork& work) {
    UnitResult result;
    try {
        result.status = std::visit([this](const auto& chosen) { return Do(chosen); }, work);
        result.isInSystemFolder =
            result.status == AnalyzerStatus::Excluded && plan_.verdict == UnitVerdict::InSystemFolder;
    } catch (const UnitFailure& failure) {
        result.status = failure.Status();
        result.reason = failure.what();
        if (failure.Status() == AnalyzerStatus::PreprocessingFailed) {
            // The report is read without the log: it must show that this source is missing from it.
            result.ownFindings.push_back(NotAnalyzedMessage(plan_.sourcePath));
        }
    } catch (const CoreUnusableException&) {
        // Past the next handler, which would make it this unit's result.
        throw;
    } catch (const std::exception& error) {
        result.status = AnalyzerStatus::Failed;
        result.reason = error.what();
    }
    result.importsModules = importsModules_;
    result.text = textFingerprint_;
    result.cost = cost_;
    result.tallies = std::move(tallies_);
    // Also of a failed unit: what a core found before it broke is worth reporting, and the receiver removes the file.
    result.fragmentPath = std::move(fragmentPath_);
    return result;
}

AnalyzerStatus UnitRun::Do(const Work::Analyze& work) {
    if (IsLeftOut()) {
        return AnalyzerStatus::Excluded;
    }
    RemoveTextAtEnd();
    if (Preprocess() == ProcessOutcome::Stopped) {
        return AnalyzerStatus::Stopped;
    }
    if (work.journal != nullptr) {
        const std::string text = ReadWholeFile(plan_.files.preprocessedPath);
        textFingerprint_ = FingerprintOf(text);
        if (IsFinished(*work.journal, text)) {
            return AnalyzerStatus::CarriedOver;
        }
    }
    return RecallOrAnalyze(nullptr);
}

AnalyzerStatus UnitRun::Do(const Work::AnalyzeAndKeep& work) {
    if (IsLeftOut()) {
        // Otherwise the next run would plan the unit again, only to leave it out again.
        work.history.RecordLeftOut(plan_.unit);
        return AnalyzerStatus::Excluded;
    }
    RemoveTextAtEnd();
    // Before the first byte is read: a file that changes from here on is not the one that the unit saw.
    UnitWatch seen = work.history.Watch(plan_.unit, FilesNamedByFlags(plan_.parsed));
    std::optional<Dependencies> dependencies = seen.KnownDependencies();
    if (!dependencies) {
        dependencies = PreprocessAndList(seen);
        if (!dependencies) {
            return AnalyzerStatus::Stopped;
        }
        progress_.Step(ProgressStage::ParsingIncludes, plan_.sourcePath);
    } else if (Preprocess() == ProcessOutcome::Stopped) {
        return AnalyzerStatus::Stopped;
    }
    const AnalyzerStatus status = RecallOrAnalyze(&*dependencies);
    // Any other end drops the watch, which forgets the unit's earlier result.
    if (status == AnalyzerStatus::Analyzed || status == AnalyzerStatus::FromCache) {
        seen.Keep(*dependencies, PathExists(fragmentPath_) ? ReadWholeFile(fragmentPath_) : std::string());
    }
    return status;
}

AnalyzerStatus UnitRun::Do(const Work::ListDependencies& work) {
    RemoveTextAtEnd();
    UnitWatch seen = work.history.Watch(plan_.unit, FilesNamedByFlags(plan_.parsed));
    // Always made anew, whatever is known: a person has asked for it, or what is known is out of date.
    const std::optional<Dependencies> dependencies = PreprocessAndList(seen);
    if (!dependencies) {
        return AnalyzerStatus::Stopped;
    }
    seen.Keep(*dependencies);
    return AnalyzerStatus::Analyzed;
}

AnalyzerStatus UnitRun::Do(const Work::Collect&) {
    if (Preprocess() == ProcessOutcome::Stopped) {
        return AnalyzerStatus::Stopped;
    }
    try {
        if (const std::optional<Dependencies> dependencies = ListDependencies()) {
            WritePathList(plan_.files.dependenciesPath, *dependencies);
        }
    } catch (const UnitFailure& failure) {
        // Without the list, the unit is preprocessed again when it is analyzed.
        context_.log.VerboseLine("  The core can't list what the unit includes: " + std::string(failure.what()));
    }
    return CollectText();
}

AnalyzerStatus UnitRun::Do(const Work::CollectAndKeep& work) {
    UnitWatch seen = work.history.Watch(plan_.unit, FilesNamedByFlags(plan_.parsed));
    const std::optional<Dependencies> dependencies = PreprocessAndList(seen);
    if (!dependencies) {
        return AnalyzerStatus::Stopped;
    }
    seen.Keep(*dependencies);
    WritePathList(plan_.files.dependenciesPath, *dependencies);
    return CollectText();
}

AnalyzerStatus UnitRun::Do(const Work::Perform& work) {
    if (IsLeftOut()) {
        return AnalyzerStatus::Excluded;
    }
    RemoveTextAtEnd();
    if (!IsCollectedTextCurrent(work.changes) && Preprocess() == ProcessOutcome::Stopped) {
        return AnalyzerStatus::Stopped;
    }
    return AnalyzeText();
}

AnalyzerStatus UnitRun::Do(const Work::Preprocess&) {
    return StatusAfter(Preprocess());
}

bool UnitRun::IsLeftOut() const {
    if (plan_.verdict == UnitVerdict::InSystemFolder) {
        context_.log.VerboseLine("  Exclusion by system folder: '" + plan_.sourcePath + "'");
    }
    return plan_.verdict != UnitVerdict::Analyze;
}

void UnitRun::RemoveTextAtEnd() {
    if (context_.places.unitFiles == SettingsFile::Lifetime::Remove) {
        // Before it is made, so that half a text is removed as well.
        text_.emplace(plan_.files.preprocessedPath);
    }
}

// A precompiled header that is missing, out of date or another compiler's gives way to the header behind it.
ProcessOutcome UnitRun::RunPreprocessing(const ParsedCommand& parsed, const Arguments& words) {
    try {
        const StartableCommand command(words, parsed, plan_.files.basePath + ".rsp");
        const ProcessOutcome outcome =
            RunChild(command.Words(), *plan_.environment, {evidence_.compiler, cost_.compiler});
        const std::optional<std::uint64_t> size = FileSize(plan_.files.preprocessedPath);
        cost_.textBytes = size.value_or(0);
        // Some flags make a compiler end well without preprocessing: the core's failure would then mislead.
        if (outcome == ProcessOutcome::Succeeded && !size) {
            throw PreprocessingFailure(plan_, "The compiler ended with code 0, but wrote no text.",
                                       evidence_.compiler.output, context_.log);
        }
        return outcome;
    } catch (const ProcessReturnCodeException&) {
        if (parsed.precompiled.path.empty()) {
            throw;
        }
    }
    context_.log.VerboseLine("  The precompiled header '" + parsed.precompiled.path +
                             "' can't be used: its header is preprocessed");
    // It names no precompiled header, so this is the last attempt.
    ParsedCommand plain = parsed;
    IncludePlainHeader(plain, plan_.Directory());
    return RunPreprocessing(plain, plan_.model->BuildPreprocessCommand(plain, plan_.files.preprocessedPath));
}

ProcessOutcome UnitRun::RunChild(const Arguments& command, const EnvironmentBlock& environment,
                                 const ChildFacts& facts) {
    ChildEnd& end = facts.end;
    end = {};
    isOutOfMemory_ = false;
    try {
        const ProcessOutcome outcome = RunSupervised(command, {plan_.Directory(), environment}, context_.limits,
                                                     context_.stop, {end.output, facts.cost});
        if (outcome == ProcessOutcome::Succeeded) {
            end.exitCode = 0;
        }
        return outcome;
    } catch (const ProcessReturnCodeException& error) {
        end.exitCode = error.ExitCode();
        isOutOfMemory_ = LooksOutOfMemory(error);
        throw;
    }
}

ProcessOutcome UnitRun::Preprocess() {
    recall_.Forget();
    if (context_.log.IsVerbose()) {
        // Looks at the disk several times for each header: only where somebody reads what it says.
        TellPrecompiledForms(plan_, context_.log);
    }
    // Or a compiler that writes nothing would have the text of an earlier run analyzed.
    RequireNone(plan_.files.preprocessedPath, context_.places);
    try {
        return RunPreprocessing(plan_.parsed, plan_.preprocessing);
    } catch (const ProcessReturnCodeException& error) {
        // A summary names only the command and its code; the compiler's own line says what is wrong.
        const std::string_view telling = TellingLine(error.Output().standardError);
        throw PreprocessingFailure(plan_, telling.empty() ? error.Summary() : telling, error.Output(), context_.log);
    } catch (const ProcessException& error) {
        throw PreprocessingFailure(plan_, error.what(), {}, context_.log);
    }
}

// Whether the text that the collecting stage has left still is what the unit's files say.
bool UnitRun::IsCollectedTextCurrent(FileChanges& changes) const {
    // Read once: the stage after this one needs it no more.
    const ScopedFile list(plan_.files.dependenciesPath);
    if (!PathExists(list.Path()) || !PathExists(plan_.files.preprocessedPath)) {
        return false;
    }
    const Dependencies dependencies = ReadPathList(list.Path());
    return !changes.HasChanged(plan_.sourcePath) &&
           std::none_of(dependencies.begin(), dependencies.end(),
                        [&changes](const std::string& path) { return changes.HasChanged(path); });
}

// The text tells all but comments and layout, which a core may look up in the files themselves.
bool UnitRun::IsFinished(const RunJournal& journal, std::string_view text) {
    const std::optional<FinishedUnit> finished = journal.Find(plan_.unit);
    if (!finished || finished->text != *textFingerprint_) {
        return false;
    }
    const std::vector<std::string> files =
        FilesNamedByMarkers(text, plan_.sourcePath, plan_.Directory(), SystemHeaders::Taken);
    const bool isCurrent = std::all_of(files.begin(), files.end(), [&finished](const std::string& path) {
        const std::optional<FileStamp> stamp = StampOf(path);
        return stamp && stamp->Newest() < finished->begin;
    });
    importsModules_ = isCurrent && finished->importsModules;
    return isCurrent;
}

// Absent after a stop.
std::optional<UnitRun::Dependencies> UnitRun::ListDependencies() {
    if (const CachedResult* const known = recall_.Find(); known != nullptr && known->dependencies) {
        return known->dependencies;
    }
    if (RunCore({"--display-dependencies", "--skip-analysis"}) == ProcessOutcome::Stopped) {
        return std::nullopt;
    }
    return ReadDependencyLines(evidence_.core.output.standardOutput, plan_.Directory());
}

// Absent after a stop.
std::optional<UnitRun::Dependencies> UnitRun::PreprocessAndList(UnitWatch& seen) {
    std::optional<Dependencies> dependencies;
    if (Preprocess() == ProcessOutcome::Succeeded) {
        dependencies = ListDependencies();
    }
    // The watch has begun anew where it does not cover the list. Once is enough: it then knows all files of the unit.
    if (!dependencies || seen.Covers(*dependencies)) {
        return dependencies;
    }
    return Preprocess() == ProcessOutcome::Succeeded ? ListDependencies() : std::nullopt;
}

AnalyzerStatus UnitRun::RecallOrAnalyze(const Dependencies* dependencies) {
    const CachedResult* const known = recall_.Find();
    if (known == nullptr) {
        const AnalyzerStatus status = AnalyzeText();
        if (status == AnalyzerStatus::Analyzed) {
            recall_.Keep(fragmentPath_, evidence_.core.output.standardOutput, dependencies);
        }
        return status;
    }
    BeginFindings();
    // By the file, as if the core had written it: whoever takes findings takes them from there.
    OutputFile(fragmentPath_, OutputFile::Mode::Replace).Append(FindingLines(*known));
    ShowOutput(known->output);
    if (dependencies != nullptr) {
        recall_.KeepDependencies(*dependencies);
    }
    return AnalyzerStatus::FromCache;
}

void UnitRun::BeginFindings() {
    importsModules_ = MayImportModules(plan_) && ImportsModules(ReadWholeFile(plan_.files.preprocessedPath));
    // Findings of an earlier run are not this one's. Named before the core runs: what it wrote counts even if it fails.
    RequireNone(plan_.files.fragmentPath, context_.places);
    fragmentPath_ = plan_.files.fragmentPath;
}

void UnitRun::ShowOutput(std::string_view output) {
    const bool isShown = !IsMsvcFamily(plan_.model->Type()) || context_.settings.showCoreOutputOfMsvc;
    const std::string shown = TakeTallies(output, tallies_);
    if (isShown && !shown.empty()) {
        context_.log.Text(shown);
    }
}

AnalyzerStatus UnitRun::AnalyzeText() {
    BeginFindings();
    const ProcessOutcome outcome = RunCore({});
    if (outcome == ProcessOutcome::Succeeded) {
        ShowOutput(evidence_.core.output.standardOutput);
    }
    return StatusAfter(outcome);
}

AnalyzerStatus UnitRun::CollectText() {
    try {
        return AnalyzeText();
    } catch (const UnitFailure&) {
        RemoveFile(plan_.files.collectedPath); // may be half of it
        throw;
    }
}

ProcessOutcome UnitRun::RunCore(const Arguments& flags) {
    evidence_.coreFlags = flags;
    Arguments command = {context_.places.corePath, "--cfg", SettingsPath()};
    command.insert(command.end(), flags.begin(), flags.end());
    try {
        return RunChild(command, *plan_.coreEnvironment, {evidence_.core, cost_.core});
    } catch (const LimitException& error) {
        throw UnitFailure(AnalyzerStatus::CoreFailed, error.what());
    } catch (const ProcessStartException& error) {
        // A folder or an environment that hinders the start is this unit's own; the program is everybody's.
        if (error.WhatFailed() == ProcessStartException::Cause::Program) {
            throw CoreUnusableException(error.what());
        }
        throw UnitFailure(AnalyzerStatus::CoreFailed, error.what());
    } catch (const ProcessReturnCodeException& error) {
        const std::string reason = CoreFailureReason(error);
        // With its command and all that the core printed; the list of failures holds the beginning.
        context_.log.VerboseLine(plan_.sourcePath + ": " + reason + "\n" + error.what());
        throw UnitFailure(AnalyzerStatus::CoreFailed, reason);
    }
}

const std::string& UnitRun::SettingsPath() {
    if (!settings_) {
        settings_.emplace(plan_.settings, plan_.files.basePath, context_.places.unitFiles);
    }
    return settings_->Path();
}

} // namespace Orvanta
