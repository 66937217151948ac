#include "history/HistoryState.h"

#include "history/DependencyInfo.h"
#include "history/NamedDependencies.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view InfoName = "depend_info.json";
constexpr std::string_view BinaryName = "unit_history.bin";

[[noreturn]] void FailReading(const std::string& path) {
    throw ZelmException(path + ": " + std::generic_category().message(errno));
}

/// Finds units by their "id". They are mostly asked for in their order.
class UnitFinder {
public:
    explicit UnitFinder(const std::vector<KnownUnit>& units) : units_(units) {}

    const KnownUnit* Find(const Fingerprint& id) {
        if (next_ < units_.size() && units_[next_].id == id) {
            return &units_[next_++];
        }
        if (places_.empty()) {
            for (std::size_t place = 0; place < units_.size(); ++place) {
                places_.emplace(units_[place].id.low, place);
            }
        }
        const auto found = places_.find(id.low);
        if (found == places_.end() || units_[found->second].id != id) {
            return nullptr;
        }
        next_ = found->second + 1;
        return &units_[found->second];
    }

private:
    const std::vector<KnownUnit>& units_;
    std::size_t next_ = 0;
    std::unordered_map<std::uint64_t, std::size_t> places_; // made when the first is out of order
};

} // namespace

HistoryState::HistoryState(std::string folderGiven, std::span<const CompileCommand> commandsGiven,
                           std::vector<UnitIdentity> identitiesGiven)
    : folder(std::move(folderGiven)), commands(commandsGiven), identities(std::move(identitiesGiven)), files(folder),
      units(identities.size()), findings(std::make_unique<FindingsStore>(folder)) {}

UnitHistory::ReadResult HistoryState::Read() {
    const std::string path = JoinPath(folder, InfoName);
    if (!PathExists(path)) {
        return UnitHistory::ReadResult::Missing;
    }
    const std::optional<ContentFingerprint> info = FingerprintOfFile(path);
    std::ifstream input(NativePath(path), std::ios::binary);
    if (!info || !input.is_open()) {
        FailReading(path);
    }
    std::optional<HistoryData> history;
    ReadBinary(history);
    const bool belongsToInfo = history && history->dependencyInfo == *info;
    if (history) {
        Adopt(std::move(*history));
    }
    if (!belongsToInfo) {
        try {
            ReadLists(input);
        } catch (const ZelmException& exception) {
            fault = path + ": " + exception.what();
            return UnitHistory::ReadResult::Unreadable;
        }
    }
    infoOnDisk_ = info;
    return UnitHistory::ReadResult::Read;
}

void HistoryState::ReadBinary(std::optional<HistoryData>& history) const {
    const std::string path = JoinPath(folder, BinaryName);
    if (!PathExists(path)) {
        return;
    }
    std::ifstream input(NativePath(path), std::ios::binary);
    if (!input.is_open()) {
        FailReading(path);
    }
    history = ReadHistory(input);
}

/// Takes over what the binary file knows of the units of this run.
void HistoryState::Adopt(HistoryData history) {
    UnitFinder finder(history.units);
    std::size_t taken = 0;
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        const KnownUnit* const known = finder.Find(FingerprintOf(identities[unit].id));
        if (known == nullptr) {
            continue;
        }
        ++taken;
        units[unit] = *known;
        isInfoBehind =
            isInfoBehind || (units[unit].hasList != 0 && units[unit].arguments != identities[unit].arguments);
    }
    isInfoBehind = isInfoBehind || history.isAhead != 0 || taken != history.units.size();
    isDirty = isInfoBehind;
    ForgetUnreadableFindings(history);
    lists = std::move(history.lists);
    files.Adopt(std::move(history.paths), std::move(history.versions));
}

void HistoryState::ForgetUnreadableFindings(const HistoryData& history) {
    if (findings->Continue(history.findingsNumber, history.findingsEnd)) {
        return;
    }
    for (KnownUnit& unit : units) {
        if (unit.findings.size != 0) {
            ForgetFindings(unit);
        }
    }
}

/// Takes the lists from the JSON file itself: what the last success of a unit saw counts as far as it covers them.
void HistoryState::ReadLists(std::istream& input) {
    NamedDependencies named(identities, commands, files);
    ReadDependencyInfo(input, [&named](const DependencyInfoEntry& entry) { named.Take(entry); });
    named.MakeLists(units, lists);
    isDirty = true; // the binary file is to belong to this JSON file
    isInfoBehind = isInfoBehind || named.IsOtherwiseWritten();
}

/// The state as it is to be saved, without what no unit needs any more. `positions` are those of its units in the run.
HistoryData HistoryState::Snapshot(std::vector<std::size_t>& positions, const Lock&) {
    HistoryData history;
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        KnownUnit known = units[unit];
        if (known.hasList == 0 && known.leftOutWith == Fingerprint{}) {
            continue;
        }
        const std::span<const std::uint32_t> list = ListOf(known, lists);
        known.id = FingerprintOf(identities[unit].id);
        known.arguments = identities[unit].arguments;
        known.listBegin = history.lists.size();
        history.lists.insert(history.lists.end(), list.begin(), list.end());
        history.units.push_back(known);
        positions.push_back(unit);
    }
    files.CopyUsed(history.lists, history.paths, history.versions);
    history.findingsNumber = findings->Number();
    history.findingsEnd = findings->End();
    history.isAhead = isInfoBehind ? 1 : 0;
    return history;
}

void HistoryState::WriteDependencyInfo(HistoryData& history, const std::vector<std::size_t>& positions) {
    DependencyInfoWriter writer(JoinPath(folder, InfoName));
    std::vector<std::uint32_t> paths;
    for (std::size_t place = 0; place < positions.size(); ++place) {
        const KnownUnit& known = history.units[place];
        if (known.hasList == 0) {
            continue;
        }
        paths.clear();
        for (const std::uint32_t version : ListOf(known, history.lists).first(known.named)) {
            paths.push_back(history.versions[version].path);
        }
        writer.Add(identities[positions[place]].id, commands[positions[place]].arguments, history.paths, paths);
    }
    infoOnDisk_ = writer.Commit();
    history.isAhead = 0;
}

void HistoryState::Write(HistoryData& history, const std::vector<std::size_t>& positions, bool writesInfo) {
    try {
        MakeFolders(folder);
        if (!infoOnDisk_) {
            RemoveFile(JoinPath(folder, BinaryName)); // it has no say any more, with the new lists neither
        }
        if (writesInfo) {
            WriteDependencyInfo(history, positions);
        }
        history.dependencyInfo = *infoOnDisk_;
        WriteHistoryFile(JoinPath(folder, BinaryName), history);
    } catch (...) {
        const Lock lock(mutex);
        isDirty = true;
        isInfoBehind = isInfoBehind || writesInfo;
        throw;
    }
}

void HistoryState::Save(Extent extent) {
    const bool isLast = extent == Extent::All;
    const std::lock_guard oneAtATime(saving_);
    const Clock::time_point begin = Clock::now();
    HistoryData history;
    std::vector<std::size_t> positions;
    bool writesInfo = false;
    {
        // What is saved is the state of one moment, in which what the files were is still true.
        const Lock lock(mutex);
        isDirty = isDirty || files.HasLearned();
        if (!isDirty) {
            return;
        }
        files.DoubtChanged();
        if (std::unique_ptr<FindingsStore> compact = isLast ? CompactFindings(*findings, folder, units) : nullptr) {
            findings = std::move(compact);
        }
        history = Snapshot(positions, lock);
        writesInfo = !infoOnDisk_ || (isLast && isInfoBehind);
        isDirty = false;
        isInfoBehind = isInfoBehind && !writesInfo;
    }
    Write(history, positions, writesInfo);
    if (isLast) {
        findings->RemoveOthers();
        RemoveAbandonedFiles(folder);
    }
    lastSaved_ = Clock::now();
    lastDuration_ = lastSaved_ - begin;
}

void HistoryState::SaveNowAndThen() {
    constexpr int MostShare = 20; // of the time goes into saving: one in so many
    {
        const std::unique_lock isFree(saving_, std::try_to_lock);
        if (!isFree ||
            Clock::now() - lastSaved_ < std::max<Clock::duration>(std::chrono::seconds(1), MostShare * lastDuration_)) {
            return;
        }
    }
    try {
        Save(Extent::Progress);
    } catch (const ZelmException&) {
        // The last save tells it, if it is still so.
        const std::lock_guard oneAtATime(saving_);
        lastSaved_ = Clock::now();
    }
}

void ForgetFindings(KnownUnit& unit) {
    unit.hasResult = 0;
    unit.findings = {};
}

} // namespace Orvanta
