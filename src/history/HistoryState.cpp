#include "history/HistoryState.h"

#include "history/NamedDependencies.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
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
    std::vector<bool> isGone;
    for (std::size_t unit = record.RunSize(); unit < record.Size(); ++unit) {
        const std::span<const VersionNumber> list = record.ListOf(unit);
        isGone.push_back(list.empty() || files.IsGone(files.FileOf(list[record[unit].sourcePlace])));
    }
    const Lock lock(mutex);
    const std::size_t first = record.RunSize();
    record.DropOthers([&](std::size_t unit) { return isGone[unit - first]; });
}

void HistoryState::FillInfo(DependencyInfoWriter& writer, const HistoryData& history,
                            const std::vector<std::size_t>& units) {
    std::vector<FileNumber> named;
    const auto add = [&](std::size_t place, const std::string& id, std::span<const std::string> arguments) {
        const KnownUnit& row = history.units[place];
        named.clear();
        for (std::size_t at = 0; at < std::size_t{row.named} + row.added; ++at) {
            named.push_back(history.versions[PlaceOf(history.lists[row.listBegin + at])].file);
        }
        const std::span<const FileNumber> all = named;
        writer.Add(id, arguments, history.paths, all.first(row.named), all.subspan(row.named));
    };
    std::unordered_map<std::size_t, std::size_t> others; // unit to place
    for (std::size_t place = 0; place < units.size(); ++place) {
        if (units[place] >= record.RunSize()) {
            others.emplace(units[place], place);
        } else if (history.units[place].hasList != 0) {
            add(place, record.IdOf(units[place]), commands[units[place]].arguments.ToVector());
        }
    }
    if (others.empty() || !folder.HasInfo()) {
        return;
    }
    // What was the command of a unit that is not of this run is known from the old file alone.
    InfoMatcher matcher(record);
    folder.ReadInfo([&](const DependencyInfoEntry& entry) {
        for (const std::size_t unit : matcher.UnitsOf(entry)) {
            if (const auto other = others.find(unit); other != others.end() && entry.id) {
                add(other->second, *entry.id, entry.arguments);
                others.erase(other);
            }
        }
    });
}

// Only the copy is made under the lock, so that the workers go on while it is written. Looks at files belong into it: a
// version that is given out between the look and the copy would be saved unchecked.
bool HistoryState::Save(Extent extent) {
    const bool isLast = extent == Extent::All;
    // Before the other lock, as everywhere.
    const Lock oneAtATime(saving_);
    const Clock::time_point begin = Clock::now();
    HistoryData history;
    std::vector<std::size_t> units;
    auto writing = HistoryFolder::InfoWriting::Stands;
    bool wasInfoBehind = false;
    if (isLast) {
        DropGoneUnits();
    }
    try {
        {
            const Lock lock(mutex);
            record.isDirty = record.isDirty || files.HasLearned() || folder.HasLearned();
            if (!record.isDirty) {
                return true;
            }
            // The last moment: what has changed since it was given out must not be saved as seen.
            files.DoubtChanged();
            if (std::unique_ptr<FindingsStore> compact =
                    isLast ? CompactFindings(*findings, folder.Path(), record.Units()) : nullptr) {
                findings = std::move(compact);
            }
            history = record.Copy(units);
            files.CopyUsed(history.lists, history.paths, history.versions);
            history.findingsNumber = findings->Number();
            history.findingsEnd = findings->End();
            wasInfoBehind = record.isInfoBehind;
            if (!folder.HasInfo() || (isLast && wasInfoBehind)) {
                writing = HistoryFolder::InfoWriting::Replace;
            } else if (wasInfoBehind) {
                writing = HistoryFolder::InfoWriting::StandsBehind;
            }
            // Already here: what a worker adds while the file is written is for the next save.
            record.isDirty = false;
            record.isInfoBehind = wasInfoBehind && writing != HistoryFolder::InfoWriting::Replace;
        }
        folder.Write(history, writing, [&](DependencyInfoWriter& writer) { FillInfo(writer, history, units); });
    } catch (const FileException& exception) {
        const Lock lock(mutex);
        // Not all was written, so all of it is still to be saved.
        record.isDirty = true;
        record.isInfoBehind = record.isInfoBehind || wasInfoBehind;
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
