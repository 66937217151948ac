#pragma once

#include "app/AnalyzeOptions.h"

#include <optional>
#include <string>

namespace Orvanta {

/// A stage of an intermodular analysis that is a run of its own.
enum class IntermodularStage {
    Collect, ///< of one shard or of all units
    Link,    ///< of what all shards have collected
    Perform, ///< of one shard or of all units; the only one with a report
};

/// What `--intermodular-stage` asks for; absent without it.
/// \throws ZelmException for a word that means nothing
[[nodiscard]] std::optional<IntermodularStage> StageOf(const AnalyzeOptions& options);

/// Whether a run with these options makes a report, or a part of one.
[[nodiscard]] bool MakesReport(const AnalyzeOptions& options);

/// The absolute path of the folder of `--shared`, which was given.
[[nodiscard]] std::string SharedFolderOf(const AnalyzeOptions& options);

/// Checks what the options say of stages and of the folder of `--shared`, before any work.
/// \throws ZelmException for the first fault found
void ValidateStageOptions(const AnalyzeOptions& options);

} // namespace Orvanta
