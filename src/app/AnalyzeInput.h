#pragma once

#include "app/AnalyzeOptions.h"
#include "app/StageOptions.h"
#include "buildinput/BuildInput.h"
#include "buildinput/SourceList.h"
#include "settings/RunSettings.h"
#include "shards/StageFolder.h"
#include "shards/UnitPartition.h"
#include "suppress/SuppressBase.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// What a stage of an intermodular analysis works on that is a run of its own.
struct StageInput {
    IntermodularStage stage;
    StageFolder folder;
    ShardSelection selection;      ///< of the units; all of them are one shard
    CollectedUnits collected = {}; ///< to be linked, or performed with
};

/// What a run has read before its first pass.
struct AnalyzeInput {
    const AnalyzeOptions& options;
    RunSettings settings;
    unsigned threads = 1;
    std::string reportPath;                                 ///< empty: the findings go to standard output
    std::optional<OrvlogConverter::SuppressBase> base = {}; ///< of --suppress-file
    std::optional<std::vector<ListedFile>> listedFiles = {};
    CollectedCommands commands = {};          ///< of a shard: its own units, and all that gave none
    std::optional<UnitPrices> prices = {};    ///< of --costs, until the shard is chosen
    std::optional<ShardSelection> shard = {}; ///< of --shard
    std::optional<StageInput> stage = {};     ///< of --intermodular-stage
};

/// Whether the run needs to know what earlier runs have learned, or is to keep it for later ones.
[[nodiscard]] bool UsesHistory(const AnalyzeInput& input);

} // namespace Orvanta
