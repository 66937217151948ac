#include "app/StageOptions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <string_view>

namespace Orvanta {

namespace {

struct StageRow {
    std::string_view word;
    IntermodularStage stage;
};

constexpr StageRow Stages[] = {
    {"collect", IntermodularStage::Collect},
    {"link", IntermodularStage::Link},
    {"perform", IntermodularStage::Perform},
};

} // namespace

std::optional<IntermodularStage> StageOf(const AnalyzeOptions& options) {
    if (!options.intermodularStage) {
        return std::nullopt;
    }
    for (const StageRow& row : Stages) {
        if (row.word == *options.intermodularStage) {
            return row.stage;
        }
    }
    throw ZelmException("Wrong value of --intermodular-stage: " + InQuotes(*options.intermodularStage) +
                        ", expected \"collect\", \"link\" or \"perform\"");
}

bool MakesReport(const AnalyzeOptions& options) {
    return StageOf(options).value_or(IntermodularStage::Perform) == IntermodularStage::Perform;
}

std::string SharedFolderOf(const AnalyzeOptions& options) {
    return AbsolutePath(options.shared.value_or(""));
}

void ValidateStageOptions(const AnalyzeOptions& options) {
    const std::optional<IntermodularStage> stage = StageOf(options);
    if (stage && !options.shared) {
        throw ZelmException("--intermodular-stage needs --shared, the folder in which the stages find each other");
    }
    if (options.shared && !stage && !options.launcher) {
        throw ZelmException("--shared needs --launcher or --intermodular-stage");
    }
    if (options.shared && LookAt(*options.shared).IsThere() && !IsDirectory(*options.shared)) {
        throw ZelmException("Wrong value of --shared: " + InQuotes(*options.shared) + ", expected a folder");
    }
    if (stage && options.regenerateDependInfo) {
        throw ZelmException("Flags --intermodular-stage and --regenerate-depend-info cannot be used together");
    }
    if (stage == IntermodularStage::Link && options.shard) {
        throw ZelmException("Flags --intermodular-stage link and --shard cannot be used together",
                            "All shards are linked at once");
    }
}

} // namespace Orvanta
