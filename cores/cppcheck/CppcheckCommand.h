#pragma once

#include "cppcheck/UnitSettings.h"
#include "platform/Process.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Cppcheck's word for a unit's language standard; empty when it has none, and Cppcheck's own default is taken.
[[nodiscard]] std::string_view CppcheckStandard(std::string_view standard);

/// Cppcheck's word for a unit's platform.
[[nodiscard]] std::string CppcheckPlatform(const UnitSettings& unit);

/// The command that lets `program` analyze the unit's cut text in `textPath` and write what CppcheckOutput reads.
[[nodiscard]] Arguments CppcheckCommand(const std::string& program, const UnitSettings& unit,
                                        const std::string& textPath);

} // namespace Orvanta
