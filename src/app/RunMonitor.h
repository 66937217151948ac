#pragma once

#include "analysis/RunForecast.h"
#include "analysis/RunPass.h"
#include "analysis/UnitEvents.h"
#include "buildinput/CompileCommand.h"
#include "history/UnitCosts.h"
#include "platform/Log.h"

#include <cstddef>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// Watches the passes of a run: foresees how long units take, and knows afterwards what they took. The run is the same
/// without it, but for the order in which units begin.
class RunMonitor : public UnitEvents {
public:
    /// `units` outlive the object. `folder` is where runs leave what units took, empty for nowhere: it is read when the
    /// first unit is to run.
    RunMonitor(std::span<const CompileCommand> units, unsigned workers, std::string folder);

    /// A pass begins: gives all its units in the order in which they are best taken up.
    [[nodiscard]] std::vector<std::size_t> BeginPass(const UnitWork& work, std::span<const UnitAction> actions);

    void UnitBegins(std::size_t unit) override;
    void UnitEnds(std::size_t unit, const UnitResult& result) override;

    /// Keeps for later runs what units took. What can't be kept costs them their foresight: the verbose log says so.
    void KeepCosts(Log& log);

    /// By unit: what it took in all passes; empty when none has run. Only between passes.
    [[nodiscard]] const std::vector<UnitCost>& Costs() const noexcept { return taken_; }

private:
    // What is known of the units that run, before any of them does.
    [[nodiscard]] std::vector<UnitExpectation> Expect(std::span<const UnitAction> actions) const;

    std::span<const CompileCommand> units_;
    unsigned workers_;
    std::string folder_;
    std::mutex mutex_;
    CostKind kind_ = CostKind::Analysis;  // of the pass
    UnitCosts costs_;                     // guarded by mutex_ while units run
    std::vector<UnitCost> taken_;         // guarded by mutex_ while units run
    std::optional<RunForecast> forecast_; // of the pass; guarded by mutex_
};

} // namespace Orvanta
