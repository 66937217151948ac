#pragma once

#include "cppcheck/AnalyzerInformation.h"
#include "cppcheck/MarkedText.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// What the collecting stage leaves of a unit.
struct UnitInformation {
    std::vector<std::string> files; ///< those that the facts stand in
    std::vector<FactGroup> facts;   ///< naming files by their aliases

    bool operator==(const UnitInformation&) const = default;
};

/// Puts together what Cppcheck wrote of a unit and the paths of its files.
[[nodiscard]] UnitInformation MakeUnitInformation(std::vector<FactGroup> facts, std::span<const MarkedFile> files);

/// Writes the information to `path`, over what is there.
/// \throws ZelmException with the path and the system's reason
void WriteUnitInformation(const std::string& path, const UnitInformation& unit);

/// \throws ZelmException naming `path` when it can't be read or is damaged
[[nodiscard]] UnitInformation ReadUnitInformation(const std::string& path);

} // namespace Orvanta
