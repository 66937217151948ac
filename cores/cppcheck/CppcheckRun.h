#pragma once

#include "cppcheck/CppcheckOutput.h"
#include "cppcheck/UnitSettings.h"
#include "platform/Process.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Cppcheck as found along PATH.
/// \throws ZelmException when it is missing
[[nodiscard]] std::string FindCppcheck();

/// Runs a command of Cppcheck to its end.
/// \throws ZelmException when it can't be started or fails
[[nodiscard]] CppcheckOutput RunCppcheckCommand(const Arguments& command, const std::string& workingDirectory);

/// Lets Cppcheck analyze the cut text of a unit. The text stands in a file beside the preprocessed one for as long as
/// that takes.
/// \throws ZelmException when Cppcheck is missing, can't be started or fails
[[nodiscard]] CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText);

/// What Cppcheck leaves of a unit for its whole-program step.
struct CppcheckCollection {
    CppcheckOutput output;           ///< only its errors: they tell whether it could read the unit
    std::string analyzerInformation; ///< what AnalyzerInformation reads
};

/// The same, for the facts. They pass through a folder beside the preprocessed text.
[[nodiscard]] CppcheckCollection CollectWithCppcheck(const UnitSettings& unit, std::string_view cutText);

} // namespace Orvanta
