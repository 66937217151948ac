#pragma once

#include "analysis/ProcessRun.h"
#include "analysis/RunPlaces.h"
#include "analysis/UnitEvidence.h"
#include "analysis/UnitPlan.h"
#include "history/UnitCost.h"
#include "platform/Exceptions.h"
#include "platform/Log.h"
#include "platform/Process.h"
#include "platform/ScopedFile.h"
#include "settings/RunSettings.h"
#include "settings/SettingsFile.h"

#include <functional>
#include <optional>
#include <string>

namespace Orvanta {

class ReplayBundles;

/// The core can't be started at all: no unit will succeed. Ends the run.
class CoreUnusableException : public ZelmException {
public:
    using ZelmException::ZelmException;
};

/// What the run of a unit works with.
struct UnitRunContext {
    const RunSettings& settings;
    const RunPlaces& places;
    Log& log;
    const StopFlag& stop;
    ChildLimits limits;               ///< of each child; the time is that of all together
    ReplayBundles* bundles = nullptr; ///< null: none are wanted
    std::function<bool()> mayRunAgain =
        {}; ///< whether a unit that runs out of memory now runs again; empty: it does not
};

/// The two programs that work on a unit: its compiler, which makes the text, and the core. Each function runs one of
/// them to its end, or until the user stops it. One thread uses an object.
class UnitPrograms {
public:
    /// Both outlive the object.
    UnitPrograms(const UnitPlan& plan, const UnitRunContext& context) : plan_(plan), context_(context) {}

    /// From here on the preprocessed text goes with this object, unless the user keeps the files of units.
    void RemoveTextAtEnd();

    /// Leaves a text of this run. \throws UnitFailure with what the compiler said
    [[nodiscard]] ProcessOutcome Preprocess();

    /// Runs the core with the unit's settings, and these flags behind them.
    /// \throws CoreUnusableException when no unit could run it, else UnitFailure
    [[nodiscard]] ProcessOutcome RunCore(const Arguments& flags);

    /// How both ended last, and what they said.
    [[nodiscard]] const UnitEvidence& Evidence() const noexcept { return evidence_; }

    /// What the core printed on standard output when it was last run.
    [[nodiscard]] const std::string& CoreOutput() const noexcept { return evidence_.core.output.standardOutput; }

    /// What they took so far.
    [[nodiscard]] const UnitCost& Cost() const noexcept { return cost_; }

    /// Whether the last one seems to have died for want of memory.
    [[nodiscard]] bool IsOutOfMemory() const noexcept { return isOutOfMemory_; }

private:
    // Where what is known of a child goes.
    struct ChildFacts {
        ChildEnd& end;
        ProcessCost& cost;
    };

    // Runs the compiler once, and once more when it stumbles over a precompiled header. A success has left the text.
    [[nodiscard]] ProcessOutcome RunPreprocessing(const ParsedCommand& parsed, const Arguments& words);
    // Runs a child in the unit's folder and remembers how it ended.
    [[nodiscard]] ProcessOutcome RunChild(const Arguments& command, const EnvironmentBlock& environment,
                                          const ChildFacts& facts);
    // Writes the settings file when it is first needed: a unit that can't be preprocessed needs none.
    [[nodiscard]] const std::string& SettingsPath();

    const UnitPlan& plan_;
    const UnitRunContext& context_;
    std::optional<ScopedFile> text_;       // the preprocessed text, when it goes with this object
    std::optional<SettingsFile> settings_; // written when the core is first run
    UnitEvidence evidence_;
    UnitCost cost_;
    bool isOutOfMemory_ = false;
};

/// Afterwards nothing is at `path` that an earlier run could have left there.
/// \throws FileException
void RequireNone(const std::string& path, const RunPlaces& places);

} // namespace Orvanta
