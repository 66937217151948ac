#include "analysis/RunOutcome.h"

#include "platform/Files.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

void RunOutcome::Settle(std::size_t unit, UnitResult& result) {
    statuses[unit] = result.status;
    inSystemFolders += result.isInSystemFolder ? 1 : 0;
    if (result.importsModules) {
        importingModules.insert(unit);
    }
    AddTallies(tallies, std::move(result.tallies));
    if (IsFailure(result.status)) {
        // Nobody reads the reason of the result after this.
        failures.emplace(unit, std::move(result.reason));
    }
}

void RunOutcome::Fail(std::size_t unit, const std::string& reason, AnalyzerStatus status) {
    if (!IsFailure(statuses[unit]) && statuses[unit] != AnalyzerStatus::Excluded) {
        statuses[unit] = status;
        failures.emplace(unit, reason);
    }
}

int CombinedResult(const RunOutcome& outcome) noexcept {
    const auto hasAny = [&](auto predicate) {
        return std::any_of(outcome.statuses.begin(), outcome.statuses.end(), predicate);
    };
    // A stop counts before failures: a run that did not come to its end says nothing about the units it left.
    if (hasAny([](AnalyzerStatus status) { return status == AnalyzerStatus::Stopped; })) {
        return InterruptedExitCode;
    }
    const bool someSucceeded = hasAny([](AnalyzerStatus status) {
        return status == AnalyzerStatus::Analyzed || status == AnalyzerStatus::CarriedOver ||
               status == AnalyzerStatus::FromCache;
    });
    const bool someFailed = hasAny([](AnalyzerStatus status) { return IsFailure(status); });
    return someSucceeded && !someFailed ? 0 : 1;
}

void OutcomeReceiver::Commit(std::size_t unit, UnitResult result) {
    if (!result.fragmentPath.empty()) {
        // Before the lock: each unit has a file of its own, and the system's call may take its time.
        RemoveFile(result.fragmentPath);
    }
    const std::lock_guard lock(mutex_);
    outcome_.Settle(unit, result);
}

} // namespace Orvanta
