#include "history/HistoryState.h"

#include "history/HistoryExtract.h"
#include "history/NamedDependencies.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

namespace Orvanta {

HistoryState::HistoryState(std::string folderPath, std::span<const CompileCommand> commandsGiven,
                           std::vector<UnitIdentity> identitiesGiven, TellUser tell)
    : commands(commandsGiven), identities(std::move(identitiesGiven)), folder(std::move(folderPath), std::move(tell)),
      files(folder.Path()), record(identities), findings(std::make_unique<FindingsStore>(folder.Path())) {}

UnitHistory::ReadResult HistoryState::Read() {
    std::optional<HistoryData> history = folder.ReadBinary();
    std::optional<ContentFingerprint> info;
    try {
        // The binary file is read first: its stamp may spare the reading of the other.
        info = folder.ReadInfoFingerprint(history ? &*history : nullptr);
    } catch (const FileException& exception) {
        fault = exception.what();
        return UnitHistory::ReadResult::Unreadable;
    }
    // Whoever removes the file wants nothing to be known.
    if (!info) {
        return UnitHistory::ReadResult::Missing;
    }
    bool belongsToInfo = false;
    if (history) {
        // The one before is what a kill between the two renames leaves.
        belongsToInfo = history->info == *info || history->earlierInfo == *info;
        record.isInfoBehind = history->info != *info && belongsToInfo;
        Adopt(std::move(*history));
    }
    return belongsToInfo ? UnitHistory::ReadResult::Read : ReadLists();
}

/// Takes over what the binary file knows.
void HistoryState::Adopt(HistoryData history) {
    record.Adopt(std::move(history.units), std::move(history.lists));
    files.Adopt(std::move(history.paths), std::move(history.versions));
    AdoptFindings(history.findingsNumber, history.findingsEnd);
}

void HistoryState::AdoptFindings(std::uint64_t number, std::uint64_t end) {
    const std::uint64_t readable = findings->Continue(number, end);
    // As it should be: nothing was cut off.
    if (readable == end) {
        return;
    }
    folder.Tell(FileException(findings->Path(), "findings are missing here"), Loss::Known);
    for (std::size_t unit = 0; unit < record.Size(); ++unit) {
        if (record[unit].findings.begin + record[unit].findings.size > readable) {
            record.ForgetResult(unit);
        }
    }
}

/// Takes the lists from the JSON file itself: what the last success of a unit saw counts as far as it covers them.
UnitHistory::ReadResult HistoryState::ReadLists() {
    try {
        NamedDependencies named(record, commands, files);
        folder.ReadInfo([&named](const DependencyInfoEntry& entry) { named.Take(entry); });
        named.PutIntoRecord();
    } catch (const FileException& exception) {
        fault = exception.what();
        // What was taken so far goes: half of a file would count as the whole.
        record = HistoryRecord(identities);
        folder.ForgetInfo();
        return UnitHistory::ReadResult::Unreadable;
    }
    return UnitHistory::ReadResult::Read;
}

/// Forgets the units of other runs whose source is gone: nothing else says that they will not be back. Those without a
/// list are not worth keeping.
void HistoryState::DropGoneUnits() {
    const auto isFileGone = [this](FileNumber file) {
        // Asked once more: no stamp can also mean that a folder stands there, or that it can't be told.
        return !files.StampOfFile(file) && LookAt(files.PathOf(file)).kind == PathKind::Nothing;
    };
    std::vector<bool> isGone;
    for (std::size_t unit = record.RunSize(); unit < record.Size(); ++unit) {
        const std::span<const VersionNumber> list = record.ListOf(unit);
        isGone.push_back(list.empty() || isFileGone(files.FileOf(list[record[unit].sourcePlace])));
    }
    const Lock lock(mutex);
    const std::size_t first = record.RunSize();
    record.DropOthers([&](std::size_t unit) { return isGone[unit - first]; });
}

void HistoryState::FillInfo(DependencyInfoWriter& writer, std::span<const std::size_t> units,
                            const VersionTable& known) const {
    std::vector<FileNumber> named;
    const auto add = [&](std::size_t unit, const std::string& id, std::span<const std::string> arguments) {
        named.clear();
        for (const VersionNumber version : record.NamedOf(unit)) {
            named.push_back(known[version].file);
        }
        const std::span<const FileNumber> all = named;
        writer.Add(id, arguments, known.Paths(), all.first(record[unit].named), all.subspan(record[unit].named));
    };
    std::unordered_set<std::size_t> others;
    for (const std::size_t unit : units) {
        if (unit >= record.RunSize()) {
            others.insert(unit);
        } else if (record[unit].hasList != 0) {
            add(unit, JoinId(identities[unit].id, record[unit].namesake), commands[unit].arguments.ToVector());
        }
    }
    if (others.empty() || !folder.HasInfo()) {
        return;
    }
    // What was the command of a unit that is not of this run is known from the old file alone.
    InfoMatcher matcher(record);
    folder.ReadInfo([&](const DependencyInfoEntry& entry) {
        for (const std::size_t unit : matcher.UnitsOf(entry)) {
            if (entry.id && others.erase(unit) != 0) {
                add(unit, *entry.id, entry.arguments);
            }
        }
    });
}

// The lock is held while it is written: what is saved must be what stands at one moment, and a copy of it would be as
// large as all that a run over a hundred thousand unchanged units holds. It costs little, as SaveNowAndThen saves
// rarely. Looks at files belong under the lock too: a version that is given out between the look and the writing would
// be saved unchecked.
void HistoryState::Write(bool isLast, const Lock&) {
    // The last moment: what has changed since it was given out must not be saved as seen.
    files.DoubtChanged();
    if (std::unique_ptr<FindingsStore> compact =
            isLast ? CompactFindings(*findings, folder.Path(), record.Units()) : nullptr) {
        findings = std::move(compact);
    }
    auto writing = HistoryFolder::InfoWriting::Stands;
    if (!folder.HasInfo() || (isLast && record.isInfoBehind)) {
        writing = HistoryFolder::InfoWriting::Replace;
    } else if (record.isInfoBehind) {
        writing = HistoryFolder::InfoWriting::StandsBehind;
    }
    const FileVersions::Held held = files.HoldToSave();
    const HistoryExtract extract(record, held.table);
    HistoryHead head;
    head.findingsNumber = findings->Number();
    head.findingsEnd = findings->End();
    folder.Write({head, extract.Counts(), [&](HistoryFileWriter& writer) { extract.WriteTo(writer); },
                  [&](DependencyInfoWriter& writer) {
                      FillInfo(writer, extract.Units(), held.table);
                  }},
                 writing);
    record.isDirty = false;
    record.isInfoBehind = record.isInfoBehind && writing != HistoryFolder::InfoWriting::Replace;
}

bool HistoryState::Save(Extent extent) {
    const bool isLast = extent == Extent::All;
    // Before the other lock, as everywhere.
    const Lock oneAtATime(saving_);
    const Clock::time_point begin = Clock::now();
    if (isLast) {
        DropGoneUnits();
    }
    try {
        const Lock lock(mutex);
        record.isDirty = record.isDirty || files.HasLearned() || folder.HasLearned();
        if (!record.isDirty) {
            return true;
        }
        Write(isLast, lock);
    } catch (const FileException& exception) {
        // In between the next save may go well; at the end nobody else would tell.
        if (isLast) {
            folder.Tell(exception, Loss::New);
        }
        return false;
    }
    if (isLast) {
        // Only now: until the new binary file stands, the old one tells of an old findings file.
        findings->RemoveOthers();
        RemoveAbandonedFiles(folder.Path());
    }
    lastSaved_ = Clock::now();
    lastDuration_ = lastSaved_ - begin;
    return true;
}

/// Saves when enough has been learned for it: rarely enough to cost little, often enough for a kill to cost little.
void HistoryState::SaveNowAndThen() {
    constexpr int MostShare = 20; // of the time goes into saving: one in so many
    {
        // A worker that finds another one saving goes on with its next unit.
        const std::unique_lock isFree(saving_, std::try_to_lock);
        if (!isFree ||
            Clock::now() - lastSaved_ < std::max<Clock::duration>(std::chrono::seconds(1), MostShare * lastDuration_)) {
            return;
        }
    }
    if (!Save(Extent::Progress)) { // the last save tells it, if it is still so
        const Lock oneAtATime(saving_);
        lastSaved_ = Clock::now();
    }
}

} // namespace Orvanta
