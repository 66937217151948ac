#pragma once

#include "bundled/CppcheckOutput.h"
#include "bundled/UnitSettings.h"
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

/// Why Cppcheck would not come to an end with the cut text of a unit in any useful time; empty when it would, or when
/// the unit asks for all at any cost. Its time grows with more than the square of the length of a list: 10,000 elements
/// take it a second, 30,000 twenty.
[[nodiscard]] std::string ReasonNotToRun(const UnitSettings& unit, std::string_view cutText);

/// Lets Cppcheck analyze the cut text of a unit. The text stands in a file beside the preprocessed one for as long as
/// that takes.
/// \throws ZelmException when Cppcheck is missing, can't be started or fails
[[nodiscard]] CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText);

/// What Cppcheck tells of a unit that is to be looked at beside others.
struct CppcheckCollection {
    CppcheckOutput output;           ///< the same as RunCppcheck's
    std::string analyzerInformation; ///< what AnalyzerInformation reads
    std::string dump;                ///< what CppcheckDump reads; empty when there is none
};

/// RunCppcheck, and what it leaves for the whole-program step. That passes through a folder beside the preprocessed
/// text.
[[nodiscard]] CppcheckCollection CollectWithCppcheck(const UnitSettings& unit, std::string_view cutText);

} // namespace Orvanta
