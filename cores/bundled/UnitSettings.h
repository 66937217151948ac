#pragma once

#include "bundled/CheckChoice.h"
#include "report/MessageLine.h"
#include "settings/EngineList.h"
#include "settings/SettingsMap.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

enum class UnitLanguage { C, Cpp };

/// What a run of the core is in an analysis across units.
enum class IntermodularStage {
    None,       ///< no part of one
    Collecting, ///< leaves a unit's information behind
    Linking,    ///< looks at the information of all units
    Performing, ///< analyzes a unit, with what the linking found
};

/// What the core needs to know of one unit. Paths are absolute and normalised.
struct UnitSettings {
    std::string preprocessedPath;
    std::string sourcePath;
    std::string outputPath; ///< empty when the settings name none: nothing but the dependencies can be asked for then
    UnitLanguage language = UnitLanguage::Cpp;
    std::string standard; ///< such as "c99" or "c++17"; empty when not known
    std::string platform; ///< such as "x64", "linux64" or "arm"
    bool isPlainCharUnsigned = false;
    std::string preprocessor; ///< the name of the compiler's family, such as "gcc"
    CheckChoice choice;
    std::vector<EngineKind> engines; ///< those that are to look at the unit; empty: those that are installed
    bool isDeep = false;             ///< without the bounds that keep the time of an analysis low
    OrvlogConverter::LineFormat outputFormat = OrvlogConverter::LineFormat::Json;
    IntermodularStage stage = IntermodularStage::None; ///< never Linking
    std::string informationPath;                       ///< the unit's information: written when collecting, known when
                                                       ///< performing, unless it is empty or names no file
    std::string mergedPath;                            ///< when performing: the file that the linking wrote
};

/// What the linking is told. Paths are absolute and normalised.
struct LinkSettings {
    std::string listPath;   ///< lists the files with the units' information
    std::string mergedPath; ///< to be written
    std::string workFolder; ///< of this run's own; does not exist yet
};

/// The stage that the settings ask for.
/// \throws ZelmException naming `settingsPath` and the key when its word is not known
[[nodiscard]] IntermodularStage ReadIntermodularStage(const SettingsMap& settings, const std::string& settingsPath);

/// Takes the unit's record out of its settings; relative paths are taken from `currentDirectory`.
/// \throws ZelmException naming `settingsPath` and the key that is missing, wrong or not supported
[[nodiscard]] UnitSettings ReadUnitSettings(const SettingsMap& settings, const std::string& settingsPath,
                                            std::string_view currentDirectory);

/// The same for the linking, which has no unit.
[[nodiscard]] LinkSettings ReadLinkSettings(const SettingsMap& settings, const std::string& settingsPath,
                                            std::string_view currentDirectory);

} // namespace Orvanta
