#pragma once

#include "app/AnalyzeOptions.h"
#include "shards/Shard.h"

#include <optional>

namespace Orvanta {

/// What `--shard` asks for; absent without it.
/// \throws ZelmException
[[nodiscard]] std::optional<Shard> ShardOf(const AnalyzeOptions& options);

/// Checks what the options say of shards, before any work.
/// \throws ZelmException for the first fault found
void ValidateShardOptions(const AnalyzeOptions& options);

} // namespace Orvanta
