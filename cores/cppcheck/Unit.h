#pragma once

#include "cppcheck/UnitSettings.h"

#include <string>

namespace Orvanta {

/// Analyzes the unit and writes its findings, which may be none, to its output file; in the performing stage, with
/// those that the linking has found in its files. An output file from before is replaced only when the unit was
/// analyzed. What Cppcheck wrote besides findings is returned. \throws ZelmException when the unit could not be
/// analyzed
[[nodiscard]] std::string AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory);

/// Analyzes the unit and writes its findings, with what concerns other units, to its information file, from which the
/// performing stage takes them. What Cppcheck wrote besides findings is returned.
/// \throws ZelmException when the unit could not be analyzed
[[nodiscard]] std::string CollectFacts(const UnitSettings& unit, const std::string& currentDirectory);

/// The files that the unit is made of, as the lines that the driver reads.
/// \throws ZelmException when the preprocessed file can't be read
[[nodiscard]] std::string DependencyLines(const UnitSettings& unit, const std::string& currentDirectory);

} // namespace Orvanta
