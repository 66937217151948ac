#pragma once

#include "cppcheck/UnitSettings.h"
#include "platform/Process.h"

#include <string>

namespace Orvanta {

/// Whether clang has any check that the choice asks for.
[[nodiscard]] bool HasClangChecks(const CheckChoice& choice);

/// Clang's name of the target that a unit is compiled for; empty for one that is not known, and clang's own is taken.
[[nodiscard]] std::string ClangTarget(const UnitSettings& unit);

/// The command that lets `program`, which is clang-tidy, look at the text in `textPath`, which ClangText has made.
[[nodiscard]] Arguments ClangCommand(const std::string& program, const UnitSettings& unit, const std::string& textPath);

} // namespace Orvanta
