#pragma once

#include "app/AnalyzeOptions.h"
#include "buildinput/BuildInput.h"
#include "buildinput/SourceList.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Log.h"
#include "platform/StopFlag.h"
#include "settings/RunSettings.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

class InvocationCollector;

/// The files that `--source-files` lists and `--dep-file` names, absolute and normalised; absent when neither is given.
/// \throws ZelmException for a list without paths
[[nodiscard]] std::optional<std::vector<ListedFile>> ReadListedFiles(const AnalyzeOptions& options, Log& log);

/// Reads the compiler invocations that a run works on: those of the build input, or the one that `--source-file` makes
/// up. Tells in the log which were skipped, and why.
/// \throws what ReadBuildInput throws
[[nodiscard]] CollectedCommands ReadInput(const AnalyzeOptions& options, const RunSettings& settings,
                                          const CompilerRegistry& registry, Log& log, const StopFlag& stop);

/// Takes the invocation that `--source-file` makes up, in the current folder, as if it had been typed there.
/// \throws ZelmException for --cl-params with an open quote
void AddSingleFile(const AnalyzeOptions& options, InvocationCollector& collector);

/// The path of the build input, which exists.
/// \throws ZelmException with advice when it doesn't
[[nodiscard]] std::string ExistingInput(const AnalyzeOptions& options);

/// Those of the values of exclusions, as options or settings give them, that leave out no source file.
[[nodiscard]] std::vector<std::string> UnusedExclusions(std::span<const std::string> values,
                                                        const std::vector<CompileCommand>& units);

/// Those of the names that no compiler of a unit has.
[[nodiscard]] std::vector<std::string> UnmatchedCompilers(const std::vector<std::string>& names,
                                                          const CollectedCommands& commands);

/// Whether one of the invocations that gave no unit should have given one.
[[nodiscard]] bool HasFailedInvocation(std::span<const SkippedInvocation> skipped);

} // namespace Orvanta
