#pragma once

#include "cppcheck/CppcheckOutput.h"
#include "cppcheck/UnitSettings.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Lets Cppcheck, as found along PATH, analyze the cut text of a unit. The text stands in a file beside the
/// preprocessed one for as long as that takes.
/// \throws ZelmException when Cppcheck is missing, can't be started or fails
[[nodiscard]] CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText);

} // namespace Orvanta
