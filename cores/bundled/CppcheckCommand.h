#pragma once

#include "bundled/UnitSettings.h"
#include "platform/Process.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Cppcheck's word for a unit's language standard; empty when it has none, and Cppcheck's own default is taken.
[[nodiscard]] std::string_view CppcheckStandard(std::string_view standard);

/// Cppcheck's word for a unit's platform, or PlatformPath where it has none that fits.
[[nodiscard]] std::string CppcheckPlatform(const UnitSettings& unit);

/// Where a platform file of the unit's own stands while Cppcheck runs.
[[nodiscard]] std::string PlatformPath(const UnitSettings& unit);

/// The command that lets `program` analyze the unit's cut text in `textPath` and write what CppcheckOutput reads.
[[nodiscard]] Arguments CppcheckCommand(const std::string& program, const UnitSettings& unit,
                                        const std::string& textPath);

/// The same for a text that is the file `textName` in the current directory, where its facts are left as well.
[[nodiscard]] Arguments CppcheckCollectCommand(const std::string& program, const UnitSettings& unit,
                                               const std::string& textName);

/// The command that lets `program` run its whole-program step over the current directory as its build folder. It looks
/// at the files `textNames` again unless what is there belongs to them.
[[nodiscard]] Arguments CppcheckLinkCommand(const std::string& program, const Arguments& textNames);

} // namespace Orvanta
