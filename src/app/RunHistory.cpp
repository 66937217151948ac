#include "app/RunHistory.h"

#include "analysis/SourceSelection.h"
#include "app/RunSetup.h"
#include "history/UnitIdentities.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

Fingerprint NamesOf(std::span<const UnitIdentity> identities) {
    FingerprintBuilder names;
    for (const UnitIdentity& identity : identities) {
        names.Add(identity.id).Add(identity.arguments); // two units of one source may change places
    }
    return names.Value();
}

// Fills `names` on the way.
std::vector<UnitIdentity> Identify(std::span<const CompileCommand> units, const RunSettings& settings,
                                   const ResultMakers& makers, Fingerprint& names) {
    std::vector<UnitIdentity> identities = IdentifyUnits(units, settings, makers);
    names = NamesOf(identities);
    return identities;
}

TellUser TellIn(Log& log) {
    return [&log](const std::string& line) {
        log.Line(line);
    };
}

} // namespace

RunHistory::RunHistory(const AnalyzeOptions& options, const RunSettings& settings,
                       std::span<const CompileCommand> units, Places places, Log& log)
    : options_(options), settings_(settings), commands_(units), places_(std::move(places)), log_(log),
      units_(places_.orvantaFolder, units, Identify(units, settings, places_.makers, names_), TellIn(log)),
      mark_(places_.orvantaFolder, TellIn(log)) {
    Read();
}

void RunHistory::Read() {
    const UnitHistory::ReadResult result = units_.Read();
    if (RegenerationOf(options_)) {
        return; // made anew in any case
    }
    switch (result) {
    case UnitHistory::ReadResult::Read:
        break;
    case UnitHistory::ReadResult::Missing:
        log_.Line("Couldn't find depend_info.json. Generating new one");
        break;
    case UnitHistory::ReadResult::Unreadable:
        log_.Line("Couldn't read depend_info.json");
        log_.VerboseLine("  " + units_.Fault());
        break;
    }
}

std::vector<UnitAction> RunHistory::SelectForListing() {
    return RegenerationOf(options_) ? std::vector<UnitAction>(commands_.size(), UnitAction::Run)
                                    : SelectUnlisted(commands_, units_, settings_);
}

std::vector<UnitAction> RunHistory::SelectListedUnits(std::span<const ListedFile> listed) {
    ListedUnits selection = SelectListed(commands_, units_, listed, settings_);
    for (const std::string& path : selection.unmatched) {
        log_.Line("Warning: no source file of the build is or includes " + path);
    }
    for (std::size_t unit = 0; log_.IsVerbose() && unit < commands_.size(); ++unit) {
        if (selection.actions[unit] == UnitAction::LeaveOut) {
            log_.VerboseLine("  Skipped: invocation " + std::to_string(commands_[unit].invocation) + " (" +
                             std::string(commands_[unit].SourceFile()) + "): not in the list of source files");
        }
    }
    return std::move(selection.actions);
}

void RunHistory::RequireListedFile(std::span<const ListedFile> listed) const {
    std::vector<std::string> places;
    for (const ListedFile& file : listed) {
        places.insert(places.end(), file.places.begin(), file.places.end());
    }
    const bool isAnyThere = std::any_of(places.begin(), places.end(), [](const std::string& place) {
        const PathAnswer answer = LookAt(place);
        return answer.IsThere() && answer.kind != PathKind::Folder;
    });
    std::vector<bool> isKnown;
    if (!isAnyThere) {
        static_cast<void>(units_.UnitsMadeOf(places, isKnown));
    }
    if (!isAnyThere && std::find(isKnown.begin(), isKnown.end(), true) == isKnown.end()) {
        throw ZelmException("The list of source files does not contain valid paths.");
    }
}

std::vector<UnitAction> RunHistory::SelectUnits() {
    return options_.incremental ? SelectModified(commands_, units_, settings_) : SelectAll(commands_, settings_);
}

bool RunHistory::IsReportWhole() {
    return !places_.reportPath.empty() && mark_.Matches(places_.reportPath, ReportContents());
}

bool RunHistory::Save(const RunOutcome& outcome) {
    for (const auto& [unit, reason] : outcome.failures) {
        units_.ForgetResult(unit);
    }
    return units_.Save();
}

void RunHistory::MarkReport() {
    if (!places_.reportPath.empty()) {
        mark_.Write(places_.reportPath, ReportContents());
    }
}

// What the report of an incremental run depends on, beside what its units found.
Fingerprint RunHistory::ReportContents() {
    FingerprintBuilder contents;
    contents.Add(names_).Add(places_.reportPath).Add(SourceTreeRoot(settings_));
    contents.Add(options_.suppressFile ? ReadWholeFile(*options_.suppressFile) : std::string());
    for (std::size_t unit = 0; unit < commands_.size(); ++unit) {
        const bool isExcluded = IsExcluded(settings_, SourcePath(commands_[unit])) || units_.IsLeftOut(unit);
        contents.Add(isExcluded ? 1 : 0);
    }
    return contents.Value();
}

} // namespace Orvanta
