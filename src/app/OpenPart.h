#pragma once

#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "shards/PartWriter.h"

#include <memory>

namespace Orvanta {

/// The part that a shard writes in place of a report; null for a run of the whole. `input` outlives it.
[[nodiscard]] std::unique_ptr<PartWriter> OpenPart(const AnalyzeInput& input, const RunPlaces& places);

} // namespace Orvanta
