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

RunMonitor::RunMonitor(std::span<const CompileCommand> units, unsigned workers, std::string folder, Display display,
                       Log& log)
    : units_(units), workers_(workers), folder_(std::move(folder)), display_(display), log_(log) {}

std::vector<std::size_t> RunMonitor::BeginPass(const UnitWork& work, std::span<const UnitAction> actions) {
    needs_.assign(units_.size(), {});
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
    std::transform(expectations.begin(), expectations.end(), needs_.begin(), [](const UnitExpectation& expected) {
        return MemoryNeed{expected.peakMemory, static_cast<std::uint64_t>(expected.bytes)};
    });
    std::vector<bool> isToRun(units_.size());
    std::transform(actions.begin(), actions.end(), isToRun.begin(),
                   [](UnitAction action) { return action == UnitAction::Run; });
    std::vector<std::size_t> order = LongestFirst(expectations, workers_);
    forecast_.emplace(std::move(expectations), isToRun, workers_);
    TellBeginning(forecast_->Total());
    if (display_ == Display::Status) {
        status_.emplace([this](std::size_t columns) { return StatusText(Status(), columns); });
    }
    return order;
}

void RunMonitor::EndPass() {
    status_.reset();
}

void RunMonitor::TellBeginning(std::size_t runs) {
    if (display_ == Display::Nothing || kind_ == CostKind::Listing || kind_ == CostKind::Performing) {
        return; // of the others it is told when their turn comes, or has been told
    }
    log_.Line(std::to_string(runs) + (runs == 1 ? " file" : " files") + " to analyze, " +
              std::to_string(std::min<std::size_t>(workers_, runs)) + " at a time");
}

void RunMonitor::Update() {
    if (status_) {
        status_->Update();
    }
}

RunStatus RunMonitor::Status() {
    // A unit is named when a person begins to wonder.
    constexpr std::chrono::seconds ShortestNamed{5};
    const auto now = RunForecast::Clock::now();
    const std::lock_guard lock(mutex_);
    RunStatus status = {forecast_->Finished(), forecast_->Total(), forecast_->Running().size(),
                        forecast_->TimeLeft(now)};
    if (!forecast_->Running().empty()) {
        const RunForecast::RunningUnit& longest = forecast_->Running().front();
        const auto age = std::chrono::duration_cast<std::chrono::seconds>(now - longest.begin);
        if (age >= ShortestNamed) {
            status.longestPath = SourcePath(units_[longest.unit]);
            status.longestAge = age;
        }
    }
    return status;
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
            expectations[unit].peakMemory = known->PeakMemory();
        } else {
            expectations[unit].bytes =
                areTextsKnown ? static_cast<float>(taken_[unit].textBytes) : SourceBytes(units_[unit]);
        }
    }
    return expectations;
}

void RunMonitor::UnitBegins(std::size_t unit) {
    {
        const std::lock_guard lock(mutex_);
        forecast_->Begin(unit, RunForecast::Clock::now());
    }
    Update();
}

void RunMonitor::UnitEnds(std::size_t unit, const UnitResult& result) {
    const auto now = RunForecast::Clock::now();
    const CostKey key = CostKeyOf(units_[unit]);
    const bool tellsCost = TellsCost(result.status);
    {
        const std::lock_guard lock(mutex_);
        forecast_->End(unit, tellsCost ? RunForecast::Ending::Whole : RunForecast::Ending::BrokenOff, now);
        taken_[unit] += result.cost;
        if (tellsCost) {
            costs_.Record(kind_, key, result.cost);
        }
    }
    Update();
}

void RunMonitor::KeepCosts() {
    try {
        costs_.Save(units_.size());
    } catch (const FileException& error) {
        log_.VerboseLine("What the files took can't be kept for later runs: " + std::string(error.what()));
    }
}

} // namespace Orvanta
