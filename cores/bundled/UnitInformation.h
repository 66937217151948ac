#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/FunctionNames.h"
#include "bundled/MarkedText.h"
#include "platform/Fingerprint.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// What the collecting stage leaves of a unit.
struct UnitInformation {
    std::vector<std::string> files;       ///< those that the facts stand in
    std::vector<FactGroup> facts;         ///< naming files by their aliases
    std::vector<NamedFunction> functions; ///< those of the facts that have a name for other units
    Fingerprint analysis;                 ///< what the findings depend on
    std::vector<std::string> findings;    ///< of the unit by itself, as JSON lines
    std::string tallies;                  ///< of the same analysis

    bool operator==(const UnitInformation&) const = default;
};

/// The paths of those of a unit's files that its facts stand in.
[[nodiscard]] std::vector<std::string> FilesOfFacts(std::span<const FactGroup> facts,
                                                    std::span<const MarkedFile> files);

/// Writes the information to `path`, over what is there.
/// \throws ZelmException with the path and the system's reason
void WriteUnitInformation(const std::string& path, const UnitInformation& unit);

/// Reads what WriteUnitInformation wrote.
/// \throws ZelmException naming `path` when it can't be read or is damaged
[[nodiscard]] UnitInformation ReadUnitInformation(const std::string& path);

} // namespace Orvanta
