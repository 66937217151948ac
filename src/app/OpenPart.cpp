#include "app/OpenPart.h"

#include "app/RunSetup.h"
#include "app/Version.h"
#include "history/UnitIdentities.h"

#include <string>

namespace Orvanta {

namespace {

Fingerprint FingerprintOfCore(const RunPlaces& places) {
    // What it holds and not where it lies, which may be elsewhere on another machine.
    return FingerprintBuilder()
        .Add(FingerprintOfFile(places.corePath).value_or(ContentFingerprint()).bytes)
        .Add(places.coreVersion)
        .Value();
}

Fingerprint FingerprintOfShared(const AnalyzeInput& input) {
    FingerprintBuilder builder;
    builder.Add(FingerprintOfSettings(input.settings));
    for (const std::string& path : input.options.analyzeOnly) {
        builder.Add(path);
    }
    return builder.Value();
}

Fingerprint FingerprintOfBase(const AnalyzeOptions& options) {
    return options.suppressFile ? FingerprintOfFile(*options.suppressFile).value_or(ContentFingerprint()).bytes
                                : Fingerprint();
}

PartHead HeadOf(const AnalyzeInput& input, const RunPlaces& places) {
    PartHead head;
    head.shard = input.shard->shard;
    head.allUnits = input.shard->allUnits;
    head.invocations = input.commands.invocations;
    head.makers = {.ownVersion = Version,
                   .resultVersion = ResultVersion,
                   .coreVersion = places.coreVersion,
                   .core = FingerprintOfCore(places),
                   .build = input.shard->build,
                   .compilers = input.shard->compilers,
                   .settings = FingerprintOfShared(input),
                   .base = FingerprintOfBase(input.options),
                   .partition = input.shard->partition};
    for (const char* const key : ReportSettings) {
        if (const std::optional<std::string> value = LastValue(input.settings.userSettings, key)) {
            head.reportSettings.emplace(key, *value);
        }
    }
    head.hasBase = input.base.has_value();
    return head;
}

} // namespace

std::unique_ptr<PartWriter> OpenPart(const AnalyzeInput& input, const RunPlaces& places) {
    if (!input.shard) {
        return nullptr;
    }
    const auto nameOf = [&input](std::size_t unit) {
        const CompileCommand& command = input.commands.units[unit];
        return PartUnit{input.shard->units[unit], command.invocation, SourcePath(command)};
    };
    return std::make_unique<PartWriter>(input.reportPath, HeadOf(input, places), input.commands.units.size(), nameOf,
                                        input.commands.skipped);
}

} // namespace Orvanta
