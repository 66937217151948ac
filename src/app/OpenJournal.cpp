#include "app/OpenJournal.h"

#include "app/Version.h"
#include "history/UnitIdentities.h"
#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/Hash.h"
#include "platform/LockFile.h"
#include "platform/Paths.h"

#include <optional>
#include <string>

namespace Orvanta {

namespace {

Fingerprint FingerprintOfBuild(std::span<const CompileCommand> units) {
    FingerprintBuilder builder;
    for (const UnitIdentity& unit : IdentifyUnits(units, RunSettings(), {})) {
        builder.Add(unit.id).Add(unit.arguments).Add(unit.inputs);
    }
    return builder.Value();
}

// A core that was installed again may give other results under one version.
Fingerprint FingerprintOfResults(const AnalyzeInput& input, const RunPlaces& places) {
    const FileStamp core = StampOf(places.corePath).value_or(FileStamp());
    FingerprintBuilder builder;
    builder.Add(FingerprintOfRun(input.settings, {places.corePath, places.coreVersion, Version}));
    builder.Add(core.size).Add(static_cast<std::uint64_t>(core.modified));
    return builder.Value();
}

// One report, one journal: the lock of the report guards it.
std::string PathOfJournal(const AnalyzeInput& input, const RunPlaces& places) {
    const std::string name = "unfinished-" + std::to_string(Fnv1a(FileNameOf(input.reportPath))) + ".journal";
    return JoinPath(OrvantaFolder(places.outputFolder), name);
}

} // namespace

std::unique_ptr<RunJournal> OpenJournal(const AnalyzeInput& input, const RunPlaces& places, Log& log) {
    if (UsesHistory(input) || input.options.intermodular) {
        return nullptr;
    }
    std::unique_ptr<RunJournal> journal;
    std::string fault;
    try {
        // What can't be locked can't be replaced either, such as a pipe.
        if (input.reportPath.empty() || LockPlaceOf(input.reportPath).folder.empty()) {
            fault = "the report is no file";
        } else {
            // Its folder is there since the report was locked, unless the report has none: which is a fault of its own.
            const JournalInputs inputs = {FingerprintOfBuild(input.commands.units),
                                          FingerprintOfResults(input, places)};
            journal =
                std::make_unique<RunJournal>(PathOfJournal(input, places), inputs,
                                             input.options.resume ? RunJournal::Start::GoOn : RunJournal::Start::Anew);
            fault = journal->WhyAnew();
        }
    } catch (const FileException& error) {
        fault = error.what();
        log.VerboseLine("This run can't be resumed when it is interrupted: " + fault);
    }
    if (input.options.resume && !fault.empty()) {
        log.Line("Nothing to resume, all files are analyzed: " + fault);
    }
    return journal;
}

} // namespace Orvanta
