#pragma once

#include "analysis/PassProgress.h"
#include "analysis/RunPass.h"
#include "analysis/RunPlaces.h"
#include "analysis/ScopedFile.h"
#include "analysis/UnitPlan.h"
#include "analysis/UnitResult.h"
#include "platform/Exceptions.h"
#include "platform/Log.h"
#include "platform/Process.h"
#include "settings/RunSettings.h"
#include "settings/SettingsFile.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

class UnitWatch;

/// The core can't be started at all: no unit will succeed. Ends the run.
class CoreUnusableException : public ZelmException {
public:
    using ZelmException::ZelmException;
};

/// What the runs of all units of a pass share.
struct UnitRunContext {
    const RunSettings& settings;
    const RunPlaces& places;
    Log& log;
    const StopFlag& stop;
};

/// The run of one unit: executes its plan, step by step. A step that fails throws; a step's value says whether it came
/// to its end or the user stopped it. Each work is a function that reads from top to bottom. One thread uses an object,
/// and once.
class UnitRun {
public:
    /// All outlive the run.
    UnitRun(const UnitPlan& plan, const UnitRunContext& context, PassProgress& progress)
        : plan_(plan), context_(context), progress_(progress) {}

    /// Does the work. What goes wrong with the unit is its result.
    /// \throws CoreUnusableException
    [[nodiscard]] UnitResult Run(const UnitWork& work);

private:
    using Dependencies = std::vector<std::string>;

    // The works.
    [[nodiscard]] AnalyzerStatus Do(const Work::Analyze& work);
    [[nodiscard]] AnalyzerStatus Do(const Work::AnalyzeAndKeep& work);
    [[nodiscard]] AnalyzerStatus Do(const Work::ListDependencies& work);
    [[nodiscard]] AnalyzerStatus Do(const Work::Collect& work);
    [[nodiscard]] AnalyzerStatus Do(const Work::CollectAndKeep& work);
    [[nodiscard]] AnalyzerStatus Do(const Work::Perform& work);

    // Their steps.
    [[nodiscard]] bool IsLeftOut() const;
    void RemoveTextAtEnd();
    [[nodiscard]] ProcessOutcome RunPreprocessing(const ParsedCommand& parsed, const Arguments& words) const;
    [[nodiscard]] ProcessOutcome Preprocess() const;
    [[nodiscard]] bool IsCollectedTextCurrent(FileChanges& changes) const;
    [[nodiscard]] std::optional<Dependencies> ListDependencies();
    [[nodiscard]] std::optional<Dependencies> PreprocessAndList(UnitWatch& seen);
    [[nodiscard]] AnalyzerStatus AnalyzeText();
    [[nodiscard]] AnalyzerStatus CollectText();
    [[nodiscard]] ProcessOutcome RunCore(const Arguments& flags, CapturedOutput& output);
    [[nodiscard]] const std::string& SettingsPath();
    void RequireNone(const std::string& path) const;

    const UnitPlan& plan_;
    const UnitRunContext& context_;
    PassProgress& progress_;
    std::optional<ScopedFile> text_;       // the preprocessed text, when it goes with this run
    std::optional<SettingsFile> settings_; // written when the core is first run
    std::string fragmentPath_;             // empty: the core was not run to find anything
};

} // namespace Orvanta
