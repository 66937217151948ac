#include "analysis/UnitRun.h"

#include "analysis/DependencyLines.h"
#include "analysis/FileChanges.h"
#include "analysis/ModuleImports.h"
#include "analysis/PathList.h"
#include "analysis/ReplayBundles.h"
#include "analysis/UnitFailure.h"
#include "compilers/Compiler.h"
#include "history/RunJournal.h"
#include "history/UnitHistory.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/LineMarker.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

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

// What an earlier run knows of the unit when it has finished it with this text, and no file that it names has been
// written to since. The text tells all but comments and layout, which a core may look up in the files themselves.
std::optional<FinishedUnit> FindFinished(const RunJournal& journal, const UnitPlan& plan, std::string_view text,
                                         const Fingerprint& fingerprint) {
    std::optional<FinishedUnit> finished = journal.Find(plan.unit);
    if (!finished || finished->text != fingerprint) {
        return std::nullopt;
    }
    const std::vector<std::string> files =
        FilesNamedByMarkers(text, plan.sourcePath, plan.Directory(), SystemHeaders::Taken);
    const bool isCurrent = std::all_of(files.begin(), files.end(), [&finished](const std::string& path) {
        const std::optional<FileStamp> stamp = StampOf(path);
        return stamp && stamp->Newest() < finished->begin;
    });
    return isCurrent ? finished : std::nullopt;
}

} // namespace

UnitResult UnitRun::Run(const UnitWork& work) {
    const auto begin = std::chrono::steady_clock::now();
    Settle(work);
    // Asked once: what is beside it may change.
    result_.runsAgain =
        programs_.IsOutOfMemory() && IsFailure(result_.status) && context_.mayRunAgain && context_.mayRunAgain();
    if (context_.bundles != nullptr && !result_.runsAgain) {
        // While the files of the unit are there.
        const auto elapsed = std::chrono::steady_clock::now() - begin;
        context_.bundles->Offer(
            {plan_, programs_.Evidence(), result_, std::chrono::duration_cast<std::chrono::seconds>(elapsed)});
    }
    return std::move(result_);
}

void UnitRun::Settle(const UnitWork& work) {
    try {
        result_.status = std::visit([this](const auto& chosen) { return Do(chosen); }, work);
        result_.isInSystemFolder =
            result_.status == AnalyzerStatus::Excluded && plan_.verdict == UnitVerdict::InSystemFolder;
    } catch (const UnitFailure& failure) {
        result_.status = failure.Status();
        result_.reason = failure.what();
        if (failure.Status() == AnalyzerStatus::PreprocessingFailed) {
            // The report is read without the log: it must show that this source is missing from it.
            result_.ownFindings.push_back(NotAnalyzedMessage(plan_.sourcePath));
        }
    } catch (const CoreUnusableException&) {
        // Past the next handler, which would make it this unit's result.
        throw;
    } catch (const std::exception& error) {
        result_.status = AnalyzerStatus::Failed;
        result_.reason = error.what();
    }
    result_.cost = programs_.Cost();
}

AnalyzerStatus UnitRun::Do(const Work::Analyze& work) {
    if (IsLeftOut()) {
        return AnalyzerStatus::Excluded;
    }
    programs_.RemoveTextAtEnd();
    if (Preprocess() == ProcessOutcome::Stopped) {
        return AnalyzerStatus::Stopped;
    }
    if (work.journal != nullptr) {
        const std::string text = ReadWholeFile(plan_.files.preprocessedPath);
        result_.text = FingerprintOf(text);
        if (const auto finished = FindFinished(*work.journal, plan_, text, *result_.text)) {
            result_.importsModules = finished->importsModules;
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
    programs_.RemoveTextAtEnd();
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
        seen.Keep(*dependencies,
                  PathExists(result_.fragmentPath) ? ReadWholeFile(result_.fragmentPath) : std::string());
    }
    return status;
}

AnalyzerStatus UnitRun::Do(const Work::ListDependencies& work) {
    programs_.RemoveTextAtEnd();
    UnitWatch seen = work.history.Watch(plan_.unit, FilesNamedByFlags(plan_.parsed));
    // Always made anew, whatever is known: a person has asked for it, or what is known is out of date.
    const std::optional<Dependencies> dependencies = PreprocessAndList(seen);
    if (!dependencies) {
        return AnalyzerStatus::Stopped;
    }
    seen.Keep(*dependencies);
    return AnalyzerStatus::Analyzed;
}

AnalyzerStatus UnitRun::Do(const Work::Collect& work) {
    if (!work.leavesText) {
        programs_.RemoveTextAtEnd();
        return Preprocess() == ProcessOutcome::Stopped ? AnalyzerStatus::Stopped : CollectText();
    }
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
    programs_.RemoveTextAtEnd();
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

ProcessOutcome UnitRun::Preprocess() {
    recall_.Forget();
    return programs_.Preprocess();
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

// Absent after a stop.
std::optional<UnitRun::Dependencies> UnitRun::ListDependencies() {
    if (const CachedResult* const known = recall_.Find(); known != nullptr && known->dependencies) {
        return known->dependencies;
    }
    if (programs_.RunCore({"--display-dependencies", "--skip-analysis"}) == ProcessOutcome::Stopped) {
        return std::nullopt;
    }
    return ReadDependencyLines(programs_.CoreOutput(), plan_.Directory());
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
            recall_.Keep(result_.fragmentPath, programs_.CoreOutput(), dependencies);
        }
        return status;
    }
    BeginFindings();
    // By the file, as if the core had written it: whoever takes findings takes them from there.
    OutputFile(result_.fragmentPath, OutputFile::Mode::Replace).Append(FindingLines(*known));
    ShowOutput(known->output);
    if (dependencies != nullptr) {
        recall_.KeepDependencies(*dependencies);
    }
    return AnalyzerStatus::FromCache;
}

void UnitRun::BeginFindings() {
    result_.importsModules = MayImportModules(plan_) && ImportsModules(ReadWholeFile(plan_.files.preprocessedPath));
    // Findings of an earlier run are not this one's. Named before the core runs: what it wrote counts even if it fails.
    RequireNone(plan_.files.fragmentPath, context_.places);
    result_.fragmentPath = plan_.files.fragmentPath;
}

void UnitRun::ShowOutput(std::string_view output) {
    const bool isShown = !IsMsvcFamily(plan_.model->Type()) || context_.settings.showCoreOutputOfMsvc;
    const std::string shown = TakeTallies(output, result_.tallies);
    if (isShown && !shown.empty()) {
        context_.log.Text(shown);
    }
}

AnalyzerStatus UnitRun::AnalyzeText() {
    BeginFindings();
    const ProcessOutcome outcome = programs_.RunCore({});
    if (outcome == ProcessOutcome::Succeeded) {
        ShowOutput(programs_.CoreOutput());
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

} // namespace Orvanta
