#pragma once

#include "analysis/UnitPlan.h"
#include "app/inspect/BuildRecords.h"
#include "app/inspect/Diagnosis.h"
#include "buildinput/BuildInput.h"
#include "compilers/CompilerRegistry.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// Looks at all units of a build for what is wrong with their files and flags. Nothing is started. What many units
/// share is looked at once: the flags of a target, a folder of headers, a path on the disk. One thread uses it.
class UnitChecks {
public:
    /// All outlive the object.
    UnitChecks(const RunSettings& settings, const CompilerRegistry& registry, Diagnosis& diagnosis)
        : settings_(settings), registry_(registry), diagnosis_(diagnosis) {}

    /// The compilers that the build was configured with.
    void ExpectCompilers(std::vector<ConfiguredCompiler> compilers) { configured_ = std::move(compilers); }

    void LookAt(const CollectedCommands& commands);

    /// The folders of the sources that are there.
    [[nodiscard]] const std::set<std::string>& SourceFolders() const noexcept { return folders_; }

private:
    /// What units with the same words have in common, but for their source and what is written for them.
    struct FlagSet {
        UnitPlan plan; ///< as far as it is needed for a verdict
        std::size_t entry = 0;
    };

    // Of all units together.
    void LookAtSkipped(const CollectedCommands& commands);

    // Of one unit: its own source, and what it shares. The second makes and looks at what is new.
    void LookAtUnit(const CompileCommand& unit);
    void LookForEarlier(const CompileCommand& unit, const std::string& source);
    [[nodiscard]] FlagSet& FlagsOf(const CompileCommand& unit);
    void LookAtFlags(const FlagSet& flags, const std::vector<std::string>& arguments);
    void LookAtOrder(const FlagSet& flags, const std::vector<std::string>& arguments);
    void LookAtForcedIncludes(const FlagSet& flags);
    void LookAtPrecompiled(const FlagSet& flags);
    void LookAtCompiler(const CompileCommand& unit);

    [[nodiscard]] bool IsThere(const std::string& path);
    // Whether a thing is met for the first time by a check.
    [[nodiscard]] bool IsNew(Check check, const std::string& thing);

    const RunSettings& settings_;
    const CompilerRegistry& registry_;
    Diagnosis& diagnosis_;
    std::vector<ConfiguredCompiler> configured_;
    std::unordered_map<std::string, FlagSet> flagSets_;
    std::unordered_map<std::string, bool> isThere_;
    std::unordered_map<std::string, const CompileCommand*> firstOf_; // by source
    std::set<std::pair<Check, std::string>> met_;
    std::set<std::string> folders_;
    std::size_t sourcesThere_ = 0;
    std::size_t left_ = 0; // to be analyzed
};

} // namespace Orvanta
