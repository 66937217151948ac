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

// What it was performed with decides its findings as the settings do.
Fingerprint FingerprintOfPerforming(const Fingerprint& settings, const StageInput& stage) {
    return FingerprintBuilder().Add(settings).Add(stage.collected.parts).Value();
}

PartHead HeadOf(const AnalyzeInput& input, const ShardSelection& selection, const PartMakers& makers) {
    PartHead head;
    head.shard = selection.shard;
    head.allUnits = selection.allUnits;
    head.invocations = input.commands.invocations;
    head.makers = makers;
    return head;
}

std::unique_ptr<PartWriter> MakeWriter(std::string path, PartHead head, const AnalyzeInput& input,
                                       const ShardSelection& selection) {
    const auto nameOf = [&input, &selection](std::size_t unit) {
        const CompileCommand& command = input.commands.units[unit];
        return PartUnit{selection.units[unit], command.invocation, SourcePath(command)};
    };
    return std::make_unique<PartWriter>(std::move(path), std::move(head), input.commands.units.size(), nameOf,
                                        input.commands.skipped);
}

} // namespace

PartMakers MakersOf(const AnalyzeInput& input, const ShardSelection& selection, const RunPlaces& places) {
    return {.ownVersion = Version,
            .resultVersion = ResultVersion,
            .coreVersion = places.coreVersion,
            .core = FingerprintOfCore(places),
            .build = selection.build,
            .compilers = selection.compilers,
            .settings = FingerprintOfShared(input),
            .base = {},
            .partition = selection.partition};
}

std::unique_ptr<PartWriter> OpenPart(const AnalyzeInput& input, const RunPlaces& places) {
    if (!input.shard) {
        return nullptr;
    }
    PartHead head = HeadOf(input, *input.shard, MakersOf(input, *input.shard, places));
    head.makers.base = FingerprintOfBase(input.options);
    if (input.stage) {
        head.makers.settings = FingerprintOfPerforming(head.makers.settings, *input.stage);
    }
    for (const char* const key : ReportSettings) {
        if (const std::optional<std::string> value = LastValue(input.settings.userSettings, key)) {
            head.reportSettings.emplace(key, *value);
        }
    }
    head.hasBase = input.base.has_value();
    return MakeWriter(input.reportPath, std::move(head), input, *input.shard);
}

std::unique_ptr<PartWriter> OpenCollectedPart(const AnalyzeInput& input, const RunPlaces& places) {
    const ShardSelection& selection = input.stage->selection;
    return MakeWriter(input.stage->folder.PartOf(selection.shard),
                      HeadOf(input, selection, MakersOf(input, selection, places)), input, selection);
}

} // namespace Orvanta
