#include "analysis/AnalyzerRunner.h"

#include "analysis/PathList.h"
#include "analysis/ProcessRun.h"
#include "analysis/RunOutcome.h"
#include "analysis/UnitEvents.h"
#include "analysis/UnitQueue.h"
#include "analysis/UnitRun.h"
#include "analysis/WorkerPool.h"
#include "platform/Files.h"
#include "platform/Memory.h"
#include "platform/Paths.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

// Beside those that the workers take next: enough that one fits beside most that run.
constexpr std::size_t UnitsToChooseFrom = 32;

ChildLimits LimitsFromNow(const UnitLimits& unit) {
    ChildLimits limits = {.outputBytes = unit.outputBytes};
    if (unit.time) {
        limits.deadline = std::chrono::steady_clock::now() + *unit.time;
    }
    return limits;
}

} // namespace

AnalyzerRunner::AnalyzerRunner(const RunSettings& settings, const CompilerRegistry& registry, const RunPlaces& places,
                               Log& log, AnalyzerProgress& progress, const StopFlag& stop)
    : settings_(settings), places_(places), log_(log), progress_(progress), stop_(stop),
      planner_(settings, registry, places, log, stop) {}

UnitResult AnalyzerRunner::Run(const AnalysisTask& task, const std::function<bool()>& mayRunAgain) {
    if (ShouldEnd()) {
        return {.status = AnalyzerStatus::Stopped};
    }
    std::optional<UnitPlan> plan;
    try {
        plan = planner_.Plan(*task.command, task.unit, task.mode);
    } catch (const std::exception& error) {
        // A plan that can't be made is the unit's own fault: the others go on.
        return {.status = AnalyzerStatus::Failed, .reason = error.what()};
    }
    const UnitRunContext context = {settings_, places_,    log_, stop_, LimitsFromNow(settings_.limits),
                                    bundles_,  mayRunAgain};
    return UnitRun(*plan, context, *task.progress).Run(*task.work);
}

std::uint64_t AnalyzerRunner::MemoryBudget() const {
    if (!settings_.childLauncher.empty()) {
        return 0; // the memory is another machine's, and nobody here can see what is taken of it
    }
    constexpr std::uint64_t PartsLeft = 10; // one of them is for all else that grows meanwhile
    constexpr unsigned BitsOfMegabyte = 20;
    const std::uint64_t granted = settings_.maxMemory ? 0 : GrantedMemory();
    const std::uint64_t budget = settings_.maxMemory.value_or(granted - granted / PartsLeft);
    if (log_.IsVerbose() && budget > 0) {
        log_.VerboseLine("Memory for all files at once: " + std::to_string(budget >> BitsOfMegabyte) + " MB");
    }
    return budget;
}

UnitResult AnalyzerRunner::RunWithMemory(const AnalysisTask& task, UnitQueue& queue) {
    // One that had all the memory to itself would only fail once more. Behind a launcher nobody knows what ran beside
    // it.
    UnitResult result = Run(task, [&] { return settings_.childLauncher.empty() && queue.HadCompany(task.unit); });
    if (result.runsAgain) {
        log_.VerboseLine("  Out of memory, analyzed again alone: '" + SourcePath(*task.command) + "'");
        if (!queue.TakeAgainAlone(task.unit)) {
            return {.status = AnalyzerStatus::Stopped};
        }
        RemoveFile(result.fragmentPath); // findings of a run that did not count
        const UnitCost first = result.cost;
        result = Run(task);
        result.cost += first;
    }
    queue.End(task.unit, result.cost.PeakMemory());
    return result;
}

void AnalyzerRunner::RunTask(const AnalysisTask& task, ResultReceiver& receiver, UnitQueue& queue) {
    UnitResult result;
    try {
        task.events->UnitBegins(task.unit);
        result = RunWithMemory(task, queue);
        task.events->UnitEnds(task.unit, result);
    } catch (...) {
        coreIsUnusable_.store(true);
        throw; // to the pool, which hands it to WaitForTasks
    }
    // From the next line on the result is the receiver's.
    const bool isStopped = result.status == AnalyzerStatus::Stopped;
    receiver.Commit(task.unit, std::move(result));
    // In this order: what progress shows as done has been handed over.
    task.progress->CountFinished();
    if (!isStopped) {
        task.progress->Step(ProgressStageOf(*task.work), SourcePath(*task.command));
    }
}

// The result of a unit with which nothing is to be done; absent for one that is to run.
std::optional<UnitResult> AnalyzerRunner::SettledResult(const CompileCommand& command, UnitAction action) const {
    switch (action) {
    case UnitAction::Run:
        break;
    case UnitAction::CarryOver:
        return UnitResult{.status = AnalyzerStatus::CarriedOver};
    case UnitAction::Exclude:
        log_.VerboseLine("  Exclusion by setting: '" + SourcePath(command) + "'");
        return UnitResult{.status = AnalyzerStatus::Excluded};
    case UnitAction::ExcludeSystem:
        log_.VerboseLine("  Exclusion by system folder: '" + SourcePath(command) + "'");
        return UnitResult{.status = AnalyzerStatus::Excluded};
    case UnitAction::LeaveOut:
        return UnitResult{.status = AnalyzerStatus::NotListed};
    }
    return std::nullopt;
}

bool AnalyzerRunner::ShouldEnd() const noexcept {
    return stop_.IsSet() || coreIsUnusable_.load();
}

int AnalyzerRunner::RunParallel(std::span<const PlacedCommand> commands, unsigned threads, const RunPass& pass) {
    if (commands.empty()) {
        throw NoCompilationCommandsToRun();
    }
    PassProgress progress(progress_, commands.size(), pass.percents);
    // A thread for a unit that needs no run would only cost its start.
    const auto runs = std::count(pass.actions.begin(), pass.actions.end(), UnitAction::Run);
    const auto workers = std::min<std::size_t>(threads, static_cast<std::size_t>(runs));
    std::vector<const CompileCommand*> commandOf(commands.size()); // by unit
    for (const auto& [command, unit] : commands) {
        commandOf[unit] = command;
    }
    UnitQueue queue(MemoryBudget(), [this] { return ShouldEnd(); }); // outlives the workers
    MakeRoomForChildren(workers);
    WorkerPool pool(workers);
    if (!pool.Fault().empty()) {
        log_.Line("Only " + std::to_string(pool.Size()) + " of " + std::to_string(workers) +
                  " threads could be started: " + pool.Fault());
    }
    // Whatever comes first in the order: what is known is on disk before the first unit begins.
    for (const auto& [command, unit] : commands) {
        if (std::optional<UnitResult> settled = SettledResult(*command, pass.actions[unit])) {
            pass.receiver.Commit(unit, std::move(*settled));
            progress.CountFinished();
        }
    }
    pass.receiver.Flush();
    for (const auto& [command, unit] : commands) {
        if (pass.actions[unit] != UnitAction::Run) {
            continue;
        }
        // Room is waited for, so that no more is queued than what the workers take next: a stop takes effect at once,
        // and the tasks of a large build don't pile up in memory. Each wait ends after a while to look at the stop.
        while (!ShouldEnd() && !pool.WaitForRoom(PollInterval, UnitsToChooseFrom)) {
        }
        if (ShouldEnd()) {
            pass.receiver.Commit(unit, {.status = AnalyzerStatus::Stopped});
            continue;
        }
        // Which of the units that wait a worker takes is decided when it is free.
        queue.Add(unit, pass.needs[unit]);
        pool.push_task([this, &pass, &progress, &queue, &commandOf] {
            const std::size_t taken = queue.Take();
            RunTask({commandOf[taken], ModeOf(pass.work), taken, &pass.work, &progress, &pass.events}, pass.receiver,
                    queue);
        });
    }
    pool.WaitForTasks();
    // Only now is no worker in Commit any more, which the receiver asks for.
    return CombinedResult(pass.receiver.Outcome());
}

void AnalyzerRunner::RunMerge(std::span<const CompileCommand* const> commands) {
    PrepareMerge(places_);
    const std::string folder = JoinPath(places_.temporaryFolder, "Intermodular");
    MakeFolders(folder);
    std::vector<std::string> collected;
    for (std::size_t unit = 0; unit < commands.size(); ++unit) {
        std::string path = planner_.NameFiles(*commands[unit], unit).collectedPath;
        if (PathExists(path)) { // a unit that failed has left none
            collected.push_back(std::move(path));
        }
    }
    // In a file of its own: the paths of a large build are too much for one value of the settings.
    const std::string list = JoinPath(folder, "units.txt");
    WritePathList(list, collected);
    SettingsMap settings = {{"intermodular-unit-list", list}};
    AddIntermodularSettings(settings, IntermodularAnalysisMode::Merge, places_.mergedFile, "");
    // Goes with the merge, also where the files of units are kept: it belongs to none of them.
    const SettingsFile file(std::move(settings), JoinPath(folder, "merge"), SettingsFile::Lifetime::Remove);
    CapturedOutput output;
    ProcessCost cost;
    // Of no unit, so it may take its time.
    const ChildLimits limits = {.outputBytes = settings_.limits.outputBytes};
    static_cast<void>(RunSupervised({places_.corePath, "--cfg", file.Path()},
                                    {folder, planner_.CommonEnvironment(), settings_.childLauncher}, limits, stop_,
                                    {output, cost}));
}

void PrepareMerge(const RunPlaces& places) {
    if (!IsDirectory(places.outputFolder)) {
        throw ZelmException("can't find output directory");
    }
    const std::string folder(DirectoryOf(places.mergedFile));
    try {
        MakeFolders(folder);
    } catch (const FileException&) {
        throw ZelmException("Couldn't create path: " + folder);
    }
    // What an earlier run linked must not be taken for this one's when the linking fails.
    RemoveFile(places.mergedFile);
}

} // namespace Orvanta
