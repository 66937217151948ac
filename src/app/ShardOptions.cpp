#include "app/ShardOptions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "shards/Part.h"

#include <string>

namespace Orvanta {

namespace {

/// An option that asks for what a shard can't do.
struct Refusal {
    bool isGiven;
    const char* option;
    const char* reason;
};

} // namespace

std::optional<Shard> ShardOf(const AnalyzeOptions& options) {
    return options.shard ? std::optional(ParseShard(*options.shard)) : std::nullopt;
}

void ValidateShardOptions(const AnalyzeOptions& options) {
    if (!ShardOf(options)) {
        if (options.costs) {
            throw ZelmException("--costs needs --shard");
        }
        return;
    }
    constexpr const char* NoHistory = "A shard keeps no history: with the next build its files may be others";
    constexpr const char* NoList = "Which files are part of a list is known from the history, which a shard has not";
    const Refusal refusals[] = {
        {options.incremental, "--incremental", NoHistory},
        {options.regenerateDependInfo.has_value(), "--regenerate-depend-info", NoHistory},
        {options.sourceList.has_value(), "--source-files", NoList},
        {options.dependencyFile.has_value(), "--dep-file", NoList},
        {options.intermodular && !options.intermodularStage, "--intermodular",
         "What one file needs of the others is spread over the shards: --intermodular-stage brings it together"},
        {options.failOn.has_value(), "--fail-on", "Give it to merge, which knows all findings"},
    };
    for (const Refusal& refusal : refusals) {
        if (refusal.isGiven) {
            throw ZelmException(std::string("Flags --shard and ") + refusal.option + " cannot be used together",
                                refusal.reason);
        }
    }
    if (options.outputFile && !FileNameOf(*options.outputFile).ends_with(PartExtension)) {
        throw ZelmException("Wrong value of --output-file: \"" + *options.outputFile +
                                "\", a shard writes a part, whose name ends in " + std::string(PartExtension),
                            "The report is what merge makes of all parts");
    }
    if (options.costs && !PathExists(*options.costs)) {
        throw ZelmException("File of costs doesn't exist: " + *options.costs);
    }
}

} // namespace Orvanta
