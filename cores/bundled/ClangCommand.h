#pragma once

#include "bundled/UnitSettings.h"
#include "platform/Process.h"

#include <string>

namespace Orvanta {

/// Whether clang has any check that the choice asks for.
[[nodiscard]] bool HasClangChecks(const CheckChoice& choice);

/// The command that lets `program`, which is clang-tidy, look at the text in `textPath`, which ClangText has made.
[[nodiscard]] Arguments ClangCommand(const std::string& program, const UnitSettings& unit, const std::string& textPath);

} // namespace Orvanta
