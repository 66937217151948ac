#pragma once

#include "analysis/PassProgress.h"
#include "analysis/RunPass.h"
#include "analysis/UnitPlan.h"
#include "analysis/UnitPrograms.h"
#include "analysis/UnitRecall.h"
#include "analysis/UnitResult.h"
#include "platform/Process.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

class UnitWatch;

/// The run of one unit: executes its plan, step by step. A step that fails throws; a step's value says whether it came
/// to its end or the user stopped it. Each work is a function that reads from top to bottom. One thread uses an object,
/// and once.
class UnitRun {
public:
    /// All outlive the run.
    UnitRun(const UnitPlan& plan, const UnitRunContext& context, PassProgress& progress)
        : plan_(plan), context_(context), progress_(progress), programs_(plan, context),
          recall_(plan, context.places.cache) {}

    /// Does the work. What goes wrong with the unit is its result.
    /// \throws CoreUnusableException
    [[nodiscard]] UnitResult Run(const UnitWork& work);

private:
    using Dependencies = std::vector<std::string>;

    // Does the work and makes a result of every way in which it ends.
    void Settle(const UnitWork& work);

    // The works.
    [[nodiscard]] AnalyzerStatus Do(const Work::Analyze& work);
    // As Analyze; a result that is known to have ended well is kept, one that fails or is stopped is forgotten.
    [[nodiscard]] AnalyzerStatus Do(const Work::AnalyzeAndKeep& work);
    // Units that are left out are listed too, when they are asked for: whether they stay so is another question.
    [[nodiscard]] AnalyzerStatus Do(const Work::ListDependencies& work);
    // Leaves the text and the list of its files where a stage of the run performs.
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
    // Makes the text; what was known of an earlier one is forgotten.
    [[nodiscard]] ProcessOutcome Preprocess();
    // Whether the text that the collecting stage has left still is what the unit's files say. Removes the list.
    [[nodiscard]] bool IsCollectedTextCurrent(FileChanges& changes) const;
    // The files that the text was made of, as the core reads them from it. Absent after a stop.
    [[nodiscard]] std::optional<Dependencies> ListDependencies();
    // Makes the text and the list, once more when files have changed under the first. Absent after a stop.
    [[nodiscard]] std::optional<Dependencies> PreprocessAndList(UnitWatch& seen);
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

    const UnitPlan& plan_;
    const UnitRunContext& context_;
    PassProgress& progress_;
    UnitPrograms programs_;
    UnitRecall recall_;
    UnitResult result_; // as far as it is known
};

} // namespace Orvanta
