#pragma once

#include "analysis/AnalyzerStatus.h"
#include "compilers/ParsedCommand.h"
#include "settings/SettingsMap.h"

#include <string>

namespace Orvanta {

class Compiler;

/// The files of one unit's run.
struct UnitFiles {
    std::string basePath;         ///< what the names of the others begin with
    std::string preprocessedPath; ///< ".Orvanta.i"
    std::string fragmentPath;     ///< where the core writes the unit's findings
    std::string dependenciesPath; ///< what a pass keeps for the next one: the files that the unit is made of
    std::string collectedPath;    ///< where the core leaves the unit's intermodular information
};

/// The language of a unit: what its flags state, else what the compiler's name or the source's extension says.
[[nodiscard]] Language UnitLanguage(const ParsedCommand& command);

/// What the core is told about a unit. `standard` is the standard's word. The user's keys win over the defaults, the
/// unit's own facts over the user's keys; only "exclude-path" may stand several times.
[[nodiscard]] SettingsMap BuildUnitSettings(const SettingsMap& userSettings, const Compiler& model,
                                            const ParsedCommand& command, const std::string& standard,
                                            const UnitFiles& files);

/// Adds what the core is told about a stage of an intermodular analysis: nothing for an ordinary run.
void AddIntermodularSettings(SettingsMap& settings, IntermodularAnalysisMode mode, const std::string& mergedFile,
                             const std::string& collectedPath);

} // namespace Orvanta
