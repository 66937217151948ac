#pragma once

#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "shards/PartWriter.h"

#include <memory>

namespace Orvanta {

/// The part that a shard writes in place of a report; null for a run of the whole. `input` outlives it.
[[nodiscard]] std::unique_ptr<PartWriter> OpenPart(const AnalyzeInput& input, const RunPlaces& places);

/// The part by which a stage that collects says what became of its units. `input`, which has a stage, outlives it.
[[nodiscard]] std::unique_ptr<PartWriter> OpenCollectedPart(const AnalyzeInput& input, const RunPlaces& places);

/// What makes the results of the units of a selection; a suppression base, which hides some of them, is not among it.
[[nodiscard]] PartMakers MakersOf(const AnalyzeInput& input, const ShardSelection& selection, const RunPlaces& places);

} // namespace Orvanta
