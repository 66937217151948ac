#pragma once

#include "analysis/PassProgress.h"
#include "analysis/ProcessRun.h"
#include "analysis/RunPass.h"
#include "analysis/RunPlaces.h"
#include "analysis/ScopedFile.h"
#include "analysis/UnitEvidence.h"
#include "analysis/UnitPlan.h"
#include "analysis/UnitRecall.h"
#include "analysis/UnitResult.h"
#include "platform/Exceptions.h"
#include "platform/Log.h"
#include "platform/Process.h"
#include "settings/RunSettings.h"
#include "settings/SettingsFile.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

class ReplayBundles;
class UnitWatch;

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
    ResultCache* cache = nullptr;     ///< null: there is none
    std::function<bool()> mayRunAgain =
        {}; ///< whether a unit that runs out of memory now runs again; empty: it does not
};

/// The run of one unit: executes its plan, step by step. A step that fails throws; a step's value says whether it came
/// to its end or the user stopped it. Each work is a function that reads from top to bottom. One thread uses an object,
/// and once.
class UnitRun {
public:
    /// All outlive the run.
    UnitRun(const UnitPlan& plan, const UnitRunContext& context, PassProgress& progress)
        : plan_(plan), context_(context), progress_(progress), recall_(plan, context.cache) {}

    /// Does the work. What goes wrong with the unit is its result.
    /// \throws CoreUnusableException
    [[nodiscard]] UnitResult Run(const UnitWork& work);

private:
    using Dependencies = std::vector<std::string>;

    // Where what is known of a child goes.
    struct ChildFacts {
        ChildEnd& end;
        ProcessCost& cost;
    };

    // Does the work and makes a result of every way in which it ends.
    [[nodiscard]] UnitResult ResultOf(const UnitWork& work);

    // The works.
    [[nodiscard]] AnalyzerStatus Do(const Work::Analyze& work);
    // As Analyze; a result that is known to have ended well is kept, one that fails or is stopped is forgotten.
    [[nodiscard]] AnalyzerStatus Do(const Work::AnalyzeAndKeep& work);
    // Units that are left out are listed too, when they are asked for: whether they stay so is another question.
    [[nodiscard]] AnalyzerStatus Do(const Work::ListDependencies& work);
    // Leaves the text and the list of its files for the stage that performs.
    [[nodiscard]] AnalyzerStatus Do(const Work::Collect& work);
    // As Collect, but a list that can't be made is a failure: the history needs it.
    [[nodiscard]] AnalyzerStatus Do(const Work::CollectAndKeep& work);
    // Uses the text that was collected as long as it is what the files say.
    [[nodiscard]] AnalyzerStatus Do(const Work::Perform& work);
    // For whoever reads the text; a unit that is left out is no exception.
    [[nodiscard]] AnalyzerStatus Do(const Work::Preprocess& work);

    // Their steps.
    // Whether the plan's verdict leaves the unit out; the verbose log says so.
    [[nodiscard]] bool IsLeftOut() const;
    // From here on the preprocessed text goes with this run, unless the user keeps the files of units.
    void RemoveTextAtEnd();
    // Runs the compiler once, and once more when it stumbles over a precompiled header. A success has left the text.
    [[nodiscard]] ProcessOutcome RunPreprocessing(const ParsedCommand& parsed, const Arguments& words);
    // Leaves a text of this run, or throws UnitFailure with what the compiler said.
    [[nodiscard]] ProcessOutcome Preprocess();
    // Whether the text that the collecting stage has left still is what the unit's files say. Removes the list.
    [[nodiscard]] bool IsCollectedTextCurrent(FileChanges& changes) const;
    // Whether an earlier run has finished the unit with this text, and nothing that the text names has changed since.
    [[nodiscard]] bool IsFinished(const RunJournal& journal, std::string_view text);
    // The files that the text was made of, as the core reads them from it. Absent after a stop.
    [[nodiscard]] std::optional<Dependencies> ListDependencies();
    // Makes the text and the list, once more when files have changed under the first. Absent after a stop.
    [[nodiscard]] std::optional<Dependencies> PreprocessAndList(UnitWatch& seen);
    // Runs a child in the unit's folder and remembers how it ended.
    [[nodiscard]] ProcessOutcome RunChild(const Arguments& command, const EnvironmentBlock& environment,
                                          const ChildFacts& facts);
    // Reports what is known of the text, when anything is; else as AnalyzeText. `dependencies` may be null: nobody has
    // listed them.
    [[nodiscard]] AnalyzerStatus RecallOrAnalyze(const Dependencies* dependencies);
    // Names the file of the unit's findings, and makes sure that it holds none of an earlier run.
    void BeginFindings();
    // Shows what the core has printed, but for what it says of the run.
    void ShowOutput(std::string_view output);
    // Has the core analyze the text; its findings are the result's, also when it fails half-way.
    [[nodiscard]] AnalyzerStatus AnalyzeText();
    // The same with a plan of the collecting stage; a failure leaves nothing that could be linked.
    [[nodiscard]] AnalyzerStatus CollectText();
    // Runs the core with the unit's settings, and these flags behind them. Throws CoreUnusableException when no unit
    // could run it, else UnitFailure.
    [[nodiscard]] ProcessOutcome RunCore(const Arguments& flags);
    // Writes the settings file when it is first needed: a unit that can't be preprocessed needs none.
    [[nodiscard]] const std::string& SettingsPath();

    const UnitPlan& plan_;
    const UnitRunContext& context_;
    PassProgress& progress_;
    std::optional<ScopedFile> text_; // the preprocessed text, when it goes with this run
    UnitRecall recall_;
    UnitEvidence evidence_;
    std::optional<SettingsFile> settings_; // written when the core is first run
    std::string fragmentPath_;             // empty: the core was not run to find anything
    std::optional<Fingerprint> textFingerprint_;
    UnitCost cost_;       // so far
    CoreTallies tallies_; // what the core said of the run
    bool isOutOfMemory_ = false;
    bool importsModules_ = false; // as the text that was analyzed says
};

} // namespace Orvanta
