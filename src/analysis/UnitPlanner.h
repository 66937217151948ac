#pragma once

#include "analysis/RunPlaces.h"
#include "analysis/StandardProbe.h"
#include "analysis/UnitPlan.h"
#include "analysis/VisualStudioEnvironment.h"
#include "compilers/TargetPlatform.h"
#include "platform/Log.h"
#include "platform/OnceMap.h"
#include "platform/StopFlag.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace Orvanta {

class CompilerRegistry;

/// Decides whether a unit is to be analyzed. Of the plan it needs the command, the source's path and the command as
/// read, and fills in the verdict with its rule.
void JudgeUnit(UnitPlan& plan, const RunSettings& settings);

/// Makes the plans of units, and keeps what they share: what compilers have answered, and environments. A plan is made
/// without starting the core and without touching the report; a compiler may be asked for its default standard. Any
/// thread may use it.
class UnitPlanner {
public:
    /// All must outlive the planner.
    UnitPlanner(const RunSettings& settings, const CompilerRegistry& registry, const RunPlaces& places, Log& log,
                const StopFlag& stop);

    /// Plans the run of one unit, in a stage of an intermodular analysis or in an ordinary one. May block while a
    /// compiler is asked.
    /// \throws ZelmException
    [[nodiscard]] UnitPlan Plan(const CompileCommand& command, std::size_t unit, IntermodularAnalysisMode mode);

    /// The model of a compiler's family.
    /// \throws ZelmException "Unknown preprocessor type: " and the type's number
    [[nodiscard]] std::shared_ptr<const Compiler> GetPreprocessor(CompilerType type) const;

    /// The files of one unit's run.
    [[nodiscard]] UnitFiles NameFiles(const CompileCommand& command, std::size_t unit) const;

    /// The driver's own variables with the run's changes over them.
    [[nodiscard]] const EnvironmentBlock& CommonEnvironment() const noexcept { return *commonEnvironment_; }

private:
    // The variables that the unit's compiler is run with. May block while a set-up script is run.
    [[nodiscard]] std::shared_ptr<const EnvironmentBlock> EnvironmentOf(const CompileCommand& invocation,
                                                                        const ParsedCommand& parsed);
    // The word for the unit's standard: what its flags say, else what the compiler answers; empty when the user's
    // settings name one. Needs the plan's environment, and notes in it where the word comes from.
    [[nodiscard]] std::string FindStandard(UnitPlan& plan);
    // Fills in the platform where no flag has named one. May block while a cross compiler is asked.
    PlatformOrigin FindPlatform(ParsedCommand& parsed);
    // Says in the verbose log, once for each compiler, what it compiles for. An absent target is this machine's.
    void TellPlatform(const ParsedCommand& parsed, const std::optional<TargetPlatform>& target);

    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    const RunPlaces& places_;
    Log& log_;
    StandardProbe probe_;
    CompilerPlatforms platforms_;
    OnceMap<bool> toldPlatforms_; // by compiler and what was told
    VisualStudioEnvironment visualStudio_;
    std::shared_ptr<const EnvironmentBlock> commonEnvironment_; // of invocations without variables of their own
};

} // namespace Orvanta
