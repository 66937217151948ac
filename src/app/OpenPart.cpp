#include "app/OpenPart.h"

#include "app/RunSetup.h"
#include "app/Version.h"
#include "cache/RootMark.h"
#include "history/UnitIdentities.h"

#include <string>
#include <utility>

namespace Orvanta {

namespace {

Fingerprint FingerprintOfCore(const RunPlaces& places) {
    // What it holds and not where it lies, which may be elsewhere on another machine.
    return FingerprintBuilder()
        .Add(FingerprintOfFile(places.corePath).value_or(ContentFingerprint()).bytes)
        .Add(places.coreVersion)
        .Value();
}

// Settings in which the place of the source tree, which may be another one for each shard, is a mark.
Fingerprint FingerprintOfShared(const AnalyzeInput& input) {
    const RootMark root(SourceTreeRoot(input.settings));
    RunSettings settings = input.settings;
    FingerprintBuilder builder;
    for (auto& [key, value] : settings.userSettings) {
        if (key == "rules-config") { // what it holds counts: its name is not one to be found by any more
            builder.Add(FingerprintOfFile(value).value_or(ContentFingerprint()).bytes);
        }
        value = root.Marked(value);
    }
    for (std::string& directory : settings.extraIncludes) {
        directory = root.Marked(std::move(directory));
    }
    for (auto& [name, value] : settings.environmentChanges) {
        value = root.Marked(value);
    }
    builder.Add(FingerprintOfSettings(settings));
    for (const std::string& path : input.options.analyzeOnly) {
        builder.Add(root.Marked(path));
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
