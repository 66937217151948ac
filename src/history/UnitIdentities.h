#pragma once

#include "buildinput/CompileCommand.h"
#include "history/UnitHistory.h"
#include "settings/RunSettings.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// How the history of a build knows these units: by their folder and source, and by all that decides their results
/// beside the files that they are made of. That is the command line, the variables of the invocation and those in which
/// compilers look for more, the settings with the file of rules, and the compiler's and the core's own files.
[[nodiscard]] std::vector<UnitIdentity> IdentifyUnits(std::span<const CompileCommand> units,
                                                      const RunSettings& settings, const std::string& corePath);

} // namespace Orvanta
