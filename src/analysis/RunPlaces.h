#pragma once

#include "settings/SettingsFile.h"

#include <cstddef>
#include <functional>
#include <string>

namespace Orvanta {

class ResultCache;

/// Where a run finds its core and puts its files.
struct RunPlaces {
    std::string corePath;
    std::string coreVersion;      ///< what the core says stands behind it; empty when it doesn't say
    std::string unitFolder;       ///< takes the files of the units; exists
    std::string temporaryFolder;  ///< takes all other files that go with the run; exists
    std::string outputFolder;     ///< of the report: what later runs and stages need lies in ".Orvanta" in there
    ResultCache* cache = nullptr; ///< of results of earlier runs; null when there is none
    SettingsFile::Lifetime unitFiles = SettingsFile::Lifetime::Remove; ///< of the preprocessed and the settings files

    std::string mergedFile = {}; ///< what the core links of all units in an intermodular analysis
    /// Where the core leaves what it collects of a unit; empty: with the other temporary files of the unit.
    std::function<std::string(std::size_t unit)> collectedPathOf = {};
};

/// The name of the file into which the core links.
inline constexpr const char* MergedFileName = "intermodular-merged-info.Orvanta.dfo";

/// The folder in the output folder that takes what later runs and stages need.
[[nodiscard]] std::string OrvantaFolder(const std::string& outputFolder);

} // namespace Orvanta
