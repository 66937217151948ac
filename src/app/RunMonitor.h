#pragma once

#include "analysis/MemoryPlan.h"
#include "analysis/RunForecast.h"
#include "analysis/RunPass.h"
#include "analysis/StatusLine.h"
#include "analysis/StatusText.h"
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
    /// What a user sees of the run while it goes on, beside the lines of progress.
    enum class Display {
        Nothing,
        Beginning, ///< how many files there are, before the first
        Status,    ///< that, and a line that says where the run stands
    };

    /// `units` and `log` outlive the object. `folder` is where runs leave what units took, empty for nowhere: it is
    /// read when the first unit is to run.
    RunMonitor(std::span<const CompileCommand> units, unsigned workers, std::string folder, Display display, Log& log);

    /// A pass begins: gives all its units in the order in which they are best taken up.
    [[nodiscard]] std::vector<std::size_t> BeginPass(const UnitWork& work, std::span<const UnitAction> actions);

    /// The pass that was begun has ended: its line is taken away.
    void EndPass();

    /// By unit: the memory that those which run in the pass need, as far as it is known.
    [[nodiscard]] const std::vector<MemoryNeed>& Needs() const noexcept { return needs_; }

    void UnitBegins(std::size_t unit) override;
    void UnitEnds(std::size_t unit, const UnitResult& result) override;

    /// Keeps for later runs what units took. What can't be kept costs them their foresight: the verbose log says so.
    void KeepCosts();

    /// By unit: what it took in all passes; empty when none has run. Only between passes.
    [[nodiscard]] const std::vector<UnitCost>& Costs() const noexcept { return taken_; }

private:
    // What is known of the units that run, before any of them does.
    [[nodiscard]] std::vector<UnitExpectation> Expect(std::span<const UnitAction> actions) const;

    // Tells how many files a pass has that is one of analysis, or comes before it.
    void TellBeginning(std::size_t runs);
    void Update();
    [[nodiscard]] RunStatus Status();

    std::span<const CompileCommand> units_;
    unsigned workers_;
    std::string folder_;
    Display display_;
    Log& log_;
    std::mutex mutex_;
    CostKind kind_ = CostKind::Analysis;  // of the pass
    UnitCosts costs_;                     // guarded by mutex_ while units run
    std::vector<MemoryNeed> needs_;       // of the pass
    std::vector<UnitCost> taken_;         // guarded by mutex_ while units run
    std::optional<RunForecast> forecast_; // of the pass; guarded by mutex_
    std::optional<StatusLine> status_;    // while a pass goes on; the last: its thread asks for the others
};

} // namespace Orvanta
