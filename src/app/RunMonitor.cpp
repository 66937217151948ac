#include "app/RunMonitor.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Orvanta {

namespace {

CostKind CostKindOf(const UnitWork& work) {
    if (std::holds_alternative<Work::ListDependencies>(work)) {
        return CostKind::Listing;
    }
    switch (ModeOf(work)) {
    case IntermodularAnalysisMode::FirstRun:
        return CostKind::Collecting;
    case IntermodularAnalysisMode::SecondRun:
        return CostKind::Performing;
    case IntermodularAnalysisMode::Merge:
    case IntermodularAnalysisMode::None:
        break;
    }
    return CostKind::Analysis;
}

// One that is missing takes little: it can't be preprocessed.
float SourceBytes(const CompileCommand& command) {
    try {
        return static_cast<float>(FileSize(SourcePath(command)).value_or(0));
    } catch (const FileException&) {
        return 0;
    }
}

// Whether the cost of a unit that ended so is what it will cost the next time. One that can't be preprocessed today may
// take long tomorrow.
bool TellsCost(AnalyzerStatus status) {
    return status == AnalyzerStatus::Analyzed || status == AnalyzerStatus::CoreFailed;
}

} // namespace

RunMonitor::RunMonitor(std::span<const CompileCommand> units, unsigned workers, std::string folder)
    : units_(units), workers_(workers), folder_(std::move(folder)) {}

std::vector<std::size_t> RunMonitor::BeginPass(const UnitWork& work, std::span<const UnitAction> actions) {
    if (RunsNone(actions)) {
        return LongestFirst(std::vector<UnitExpectation>(units_.size()), workers_);
    }
    if (taken_.empty()) {
        // Not before: most incremental runs have nothing to do, and are to cost nothing.
        taken_.resize(units_.size());
        costs_ = folder_.empty() ? UnitCosts() : UnitCosts(folder_);
    }
    kind_ = CostKindOf(work);
    std::vector<UnitExpectation> expectations = Expect(actions);
    std::vector<bool> isToRun(units_.size());
    std::transform(actions.begin(), actions.end(), isToRun.begin(),
                   [](UnitAction action) { return action == UnitAction::Run; });
    std::vector<std::size_t> order = LongestFirst(expectations, workers_);
    const std::lock_guard lock(mutex_);
    forecast_.emplace(std::move(expectations), isToRun, workers_);
    return order;
}

std::vector<UnitExpectation> RunMonitor::Expect(std::span<const UnitAction> actions) const {
    // A pass behind another knows the texts, which tell more than the sources do.
    const bool areTextsKnown =
        std::any_of(taken_.begin(), taken_.end(), [](const UnitCost& cost) { return cost.textBytes > 0; });
    std::vector<UnitExpectation> expectations(units_.size());
    for (std::size_t unit = 0; unit < units_.size(); ++unit) {
        if (actions[unit] != UnitAction::Run) {
            continue;
        }
        if (const auto known = costs_.IsEmpty() ? std::nullopt : costs_.Find(kind_, CostKeyOf(units_[unit]))) {
            expectations[unit].seconds = std::chrono::duration<float>(known->Wall()).count();
        } else {
            expectations[unit].bytes =
                areTextsKnown ? static_cast<float>(taken_[unit].textBytes) : SourceBytes(units_[unit]);
        }
    }
    return expectations;
}

void RunMonitor::UnitBegins(std::size_t unit) {
    const std::lock_guard lock(mutex_);
    forecast_->Begin(unit, RunForecast::Clock::now());
}

void RunMonitor::UnitEnds(std::size_t unit, const UnitResult& result) {
    const auto now = RunForecast::Clock::now();
    const CostKey key = CostKeyOf(units_[unit]);
    const bool tellsCost = TellsCost(result.status);
    const std::lock_guard lock(mutex_);
    forecast_->End(unit, tellsCost ? RunForecast::Ending::Whole : RunForecast::Ending::BrokenOff, now);
    taken_[unit] += result.cost;
    if (tellsCost) {
        costs_.Record(kind_, key, result.cost);
    }
}

void RunMonitor::KeepCosts(Log& log) {
    try {
        costs_.Save(units_.size());
    } catch (const FileException& error) {
        log.VerboseLine("What the files took can't be kept for later runs: " + std::string(error.what()));
    }
}

} // namespace Orvanta
