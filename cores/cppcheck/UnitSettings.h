#pragma once

#include "report/MessageLine.h"
#include "settings/SettingsMap.h"

#include <string>
#include <string_view>

namespace Orvanta {

enum class UnitLanguage { C, Cpp };

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
    OrvlogConverter::LineFormat outputFormat = OrvlogConverter::LineFormat::Json;
};

/// Takes the unit's record out of its settings; relative paths are taken from `currentDirectory`.
/// \throws ZelmException naming `settingsPath` and the key that is missing, wrong or not supported
[[nodiscard]] UnitSettings ReadUnitSettings(const SettingsMap& settings, const std::string& settingsPath,
                                            std::string_view currentDirectory);

} // namespace Orvanta
