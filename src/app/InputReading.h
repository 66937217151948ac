#pragma once

#include "app/AnalyzeOptions.h"
#include "buildinput/BuildInput.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"
#include "settings/RunSettings.h"

namespace Orvanta {

/// Reads the compiler invocations that a run works on: those of the build input, or the one that `--source-file` makes
/// up, and of them those whose sources `--source-files` lists. Tells in the log which were skipped, and why.
/// \throws what ReadBuildInput throws, and ZelmException for a list without paths
[[nodiscard]] CollectedCommands ReadInput(const AnalyzeOptions& options, const RunSettings& settings,
                                          const CompilerRegistry& registry, Log& log, const StopFlag& stop);

/// Whether there would be units, but the list of source files names none of them.
[[nodiscard]] bool IsNothingListed(const CollectedCommands& commands);

/// Whether an invocation that should have given a unit gave none.
[[nodiscard]] bool HasFailedInvocation(const CollectedCommands& commands);

} // namespace Orvanta
