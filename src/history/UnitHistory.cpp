#include "history/UnitHistory.h"

#include "history/FileVersions.h"
#include "history/FindingsStore.h"
#include "history/HistoryRecord.h"
#include "history/NamedDependencies.h"
#include "history/PathShortener.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

using Moment = FileVersions::Moment;
using WhenAbsent = FileVersions::WhenAbsent;

// The path with all links resolved in the part of it that exists.
std::string ResolvedPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(NativePath(path), error);
    return error ? path : PathText(resolved);
}

std::string ComparableForm(const std::string& path) {
    return ComparablePath(NormalizePath(path));
}

/// Files that are looked for among those that units are made of.
class WantedFiles {
public:
    explicit WantedFiles(std::span<const std::string> paths) : isMissing_(paths.size()) {
        for (std::size_t place = 0; place < paths.size(); ++place) {
            byPath_[ComparableForm(paths[place])].push_back(place);
            if (const std::optional<FileStamp> stamp = StampOf(paths[place])) {
                byFile_[{stamp->volume, stamp->index}].push_back(place);
            } else {
                isMissing_[place] = true;
                byPath_[ComparableForm(ResolvedPath(paths[place]))].push_back(place);
            }
        }
    }

    /// The places, among the paths, of those that lead to the file.
    [[nodiscard]] std::vector<std::size_t> PlacesOf(const std::string& path,
                                                    const std::optional<FileStamp>& stamp) const {
        std::vector<std::size_t> places;
        Append(places, byPath_, ComparableForm(path));
        if (stamp) {
            Append(places, byFile_, std::pair(stamp->volume, stamp->index));
        } else if (!path.empty()) {
            Append(places, byPath_, ComparableForm(ResolvedPath(path)));
        }
        return places;
    }

    [[nodiscard]] bool IsMissing(std::size_t place) const { return isMissing_[place]; }

private:
    template <typename Map>
    static void Append(std::vector<std::size_t>& places, const Map& map, const typename Map::key_type& key) {
        if (const auto found = map.find(key); found != map.end()) {
            places.insert(places.end(), found->second.begin(), found->second.end());
        }
    }

    std::unordered_map<std::string, std::vector<std::size_t>> byPath_;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::vector<std::size_t>> byFile_;
    std::vector<bool> isMissing_;
};

} // namespace

struct UnitHistory::State {
    using Clock = std::chrono::steady_clock;
    using Lock = std::lock_guard<std::mutex>;
    using Loss = HistoryFolder::Loss;

    enum class Extent {
        Progress, ///< what a kill would lose
        All,
    };

    State(std::string folderPath, std::span<const CompileCommand> commandsGiven,
          std::vector<UnitIdentity> identitiesGiven, TellUser tell)
        : commands(commandsGiven), identities(std::move(identitiesGiven)),
          folder(std::move(folderPath), std::move(tell)), files(folder.Path()), record(identities),
          findings(std::make_unique<FindingsStore>(folder.Path())) {}

    void Adopt(HistoryData history);
    void AdoptFindings(std::uint64_t number, std::uint64_t end);
    ReadResult ReadLists();

    [[nodiscard]] bool IsCurrent(VersionNumber version);
    [[nodiscard]] bool HasCurrentList(std::size_t unit);
    [[nodiscard]] bool HasFindings(std::size_t unit);

    [[nodiscard]] const std::string& DirectoryOfUnit(std::size_t unit) const {
        return *commands[unit].absoluteDirectory;
    }

    [[nodiscard]] FileNumber NumberOf(std::size_t unit, std::string_view path);
    [[nodiscard]] std::vector<FileNumber> InputFilesOf(std::size_t unit, std::span<const std::string> named);
    [[nodiscard]] SeenList MakeList(std::size_t unit, Moment begin, std::span<const std::string> dependencies,
                                    std::span<const std::string> inputFiles);
    [[nodiscard]] std::optional<FindingsRange> KeepFindings(std::size_t unit, std::string_view text);
    [[nodiscard]] bool NamesSameFiles(std::size_t unit, const SeenList& list, const Lock& lock) const;

    bool Save(Extent extent);
    void SaveNowAndThen();
    void DropGoneUnits();
    void Write(HistoryData& history, HistoryFolder::InfoWriting writing, const std::vector<std::size_t>& units);
    void FillInfo(DependencyInfoWriter& writer, const HistoryData& history, const std::vector<std::size_t>& units);

    const std::span<const CompileCommand> commands;
    const std::vector<UnitIdentity> identities;
    HistoryFolder folder;
    std::string fault; // why `depend_info.json` is unreadable
    FileVersions files;
    PathShortener shortener;
    std::vector<signed char> isCurrent; // of the questions, by version: 1 it is, 0 it is not, -1 not asked yet

    std::mutex mutex;
    HistoryRecord record;                    // guarded by mutex, as all that follows
    std::unique_ptr<FindingsStore> findings; // not null

    std::mutex saving;                          // one at a time; taken before `mutex`
    Clock::time_point lastSaved = Clock::now(); // guarded by saving
    Clock::duration lastDuration{};             // guarded by saving
};

/// Takes over what the binary file knows.
void UnitHistory::State::Adopt(HistoryData history) {
    record.Adopt(std::move(history.units), std::move(history.lists));
    files.Adopt(std::move(history.paths), std::move(history.versions));
    AdoptFindings(history.findingsNumber, history.findingsEnd);
}

void UnitHistory::State::AdoptFindings(std::uint64_t number, std::uint64_t end) {
    const std::uint64_t readable = findings->Continue(number, end);
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
UnitHistory::ReadResult UnitHistory::State::ReadLists() {
    try {
        NamedDependencies named(record, commands, files);
        folder.ReadInfo([&named](const DependencyInfoEntry& entry) { named.Take(entry); });
        named.PutIntoRecord();
    } catch (const FileException& exception) {
        fault = exception.what();
        record = HistoryRecord(identities);
        folder.ForgetInfo();
        return ReadResult::Unreadable;
    }
    return ReadResult::Read;
}

bool UnitHistory::State::IsCurrent(VersionNumber version) {
    const std::size_t place = PlaceOf(version);
    if (place >= isCurrent.size()) {
        isCurrent.resize(place + 1, -1);
    }
    if (isCurrent[place] < 0) {
        isCurrent[place] = files.IsCurrent(version) ? 1 : 0;
    }
    return isCurrent[place] == 1;
}

bool UnitHistory::State::HasCurrentList(std::size_t unit) {
    const std::span<const VersionNumber> list = record.ListOf(unit);
    return record.HasList(unit) &&
           std::all_of(list.begin(), list.end(), [this](VersionNumber version) { return IsCurrent(version); });
}

/// Whether what the last success of the unit found can be read. It is looked at here, before anything relies on it:
/// when the report is written it is too late to run the unit.
bool UnitHistory::State::HasFindings(std::size_t unit) {
    if (!record.HasResult(unit) || findings->IsIntact(record[unit].findings)) {
        return record.HasResult(unit);
    }
    folder.Tell(FileException(findings->Path(), "the findings kept here are damaged"), Loss::Known);
    record.ForgetResult(unit);
    return false;
}

FileNumber UnitHistory::State::NumberOf(std::size_t unit, std::string_view path) {
    const std::string& directory = DirectoryOfUnit(unit);
    return IsAbsolutePath(path) ? files.NumberOf(shortener.Shorten(std::string(path)), directory)
                                : files.NumberOf(path, directory);
}

/// The files that decide the unit's result and that it is not made of, its source first.
std::vector<FileNumber> UnitHistory::State::InputFilesOf(std::size_t unit, std::span<const std::string> named) {
    std::vector<FileNumber> numbers = {NumberOf(unit, JoinPath(DirectoryOfUnit(unit), commands[unit].SourceFile()))};
    if (const auto& programs = identities[unit].programs) {
        for (const std::string& path : *programs) {
            numbers.push_back(files.NumberOf(path, DirectoryOfUnit(unit)));
        }
    }
    for (const std::string& path : named) {
        numbers.push_back(files.NumberOf(path, DirectoryOfUnit(unit)));
    }
    return numbers;
}

SeenList UnitHistory::State::MakeList(std::size_t unit, Moment begin, std::span<const std::string> dependencies,
                                      std::span<const std::string> inputFiles) {
    SeenList list;
    std::vector<FileNumber> listed;
    const auto add = [&](FileNumber file, WhenAbsent whenAbsent) {
        listed.push_back(file);
        list.versions.push_back(files.VersionSeenBy(file, begin, whenAbsent));
    };
    const auto placeOf = [&](FileNumber file) {
        return static_cast<std::size_t>(std::find(listed.begin(), listed.end(), file) - listed.begin());
    };
    for (const std::string& dependency : dependencies) {
        add(NumberOf(unit, dependency), WhenAbsent::Doubt);
    }
    list.named = listed.size();
    std::vector<VersionNumber> added;
    {
        const Lock lock(mutex);
        const std::span<const VersionNumber> before = record.NamedOf(unit).subspan(record[unit].named);
        added.assign(before.begin(), before.end());
    }
    for (const VersionNumber version : added) {
        if (const FileNumber file = files.FileOf(version); placeOf(file) == listed.size()) {
            add(file, WhenAbsent::Doubt);
        }
    }
    list.added = listed.size() - list.named;
    const std::vector<FileNumber> inputs = InputFilesOf(unit, inputFiles);
    for (const FileNumber file : inputs) {
        if (placeOf(file) == listed.size()) {
            add(file, file == inputs.front() ? WhenAbsent::Doubt : WhenAbsent::Seen);
        }
    }
    list.sourcePlace = placeOf(inputs.front());
    return list;
}

/// Where the findings of a unit stand from now on: where they do already when they are as before. Absent when they
/// can't be written.
std::optional<FindingsRange> UnitHistory::State::KeepFindings(std::size_t unit, std::string_view text) {
    FindingsRange before;
    {
        const Lock lock(mutex);
        before = record[unit].findings;
    }
    if (before.size == text.size() && before.text == FingerprintOf(text) && findings->IsIntact(before)) {
        return before;
    }
    try {
        return findings->Append(text);
    } catch (const FileException& exception) {
        folder.Tell(exception, Loss::New);
        return std::nullopt;
    }
}

bool UnitHistory::State::NamesSameFiles(std::size_t unit, const SeenList& list, const Lock&) const {
    const KnownUnit& row = record[unit];
    const std::span<const VersionNumber> before = record.NamedOf(unit);
    return row.hasList != 0 && row.named == list.named && row.added == list.added &&
           std::equal(before.begin(), before.end(), list.versions.begin(),
                      [this](VersionNumber left, VersionNumber right) {
                          return left == right || files.FileOf(left) == files.FileOf(right);
                      });
}

/// Forgets the units of other runs whose source is gone.
void UnitHistory::State::DropGoneUnits() {
    std::vector<bool> isGone;
    for (std::size_t unit = record.RunSize(); unit < record.Size(); ++unit) {
        const std::span<const VersionNumber> list = record.ListOf(unit);
        isGone.push_back(list.empty() || files.IsGone(files.FileOf(list[record[unit].sourcePlace])));
    }
    const Lock lock(mutex);
    const std::size_t first = record.RunSize();
    record.DropOthers([&](std::size_t unit) { return isGone[unit - first]; });
}

void UnitHistory::State::FillInfo(DependencyInfoWriter& writer, const HistoryData& history,
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

bool UnitHistory::State::Save(Extent extent) {
    const bool isLast = extent == Extent::All;
    const Lock oneAtATime(saving);
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
            // What is saved is the state of one moment, in which what the files were is still true.
            const Lock lock(mutex);
            record.isDirty = record.isDirty || files.HasLearned();
            if (!record.isDirty) {
                return true;
            }
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
            record.isDirty = false;
            record.isInfoBehind = wasInfoBehind && writing != HistoryFolder::InfoWriting::Replace;
        }
        folder.Write(history, writing, [&](DependencyInfoWriter& writer) { FillInfo(writer, history, units); });
    } catch (const FileException& exception) {
        const Lock lock(mutex);
        record.isDirty = true;
        record.isInfoBehind = record.isInfoBehind || wasInfoBehind;
        if (isLast) {
            folder.Tell(exception, Loss::New);
        }
        return false;
    }
    if (isLast) {
        findings->RemoveOthers();
        RemoveAbandonedFiles(folder.Path());
    }
    lastSaved = Clock::now();
    lastDuration = lastSaved - begin;
    return true;
}

/// Saves when enough has been learned for it: rarely enough to cost little, often enough for a kill to cost little.
void UnitHistory::State::SaveNowAndThen() {
    constexpr int MostShare = 20; // of the time goes into saving: one in so many
    {
        const std::unique_lock isFree(saving, std::try_to_lock);
        if (!isFree ||
            Clock::now() - lastSaved < std::max<Clock::duration>(std::chrono::seconds(1), MostShare * lastDuration)) {
            return;
        }
    }
    if (!Save(Extent::Progress)) { // the last save tells it, if it is still so
        const Lock oneAtATime(saving);
        lastSaved = Clock::now();
    }
}

UnitHistory::UnitHistory(std::string folder, std::span<const CompileCommand> commands,
                         std::vector<UnitIdentity> identities, TellUser tell)
    : state_(std::make_unique<State>(std::move(folder), commands, std::move(identities), std::move(tell))) {}

UnitHistory::~UnitHistory() = default;

UnitHistory::ReadResult UnitHistory::Read() {
    std::optional<ContentFingerprint> info;
    try {
        info = state_->folder.ReadInfoFingerprint();
    } catch (const FileException& exception) {
        state_->fault = exception.what();
        return ReadResult::Unreadable;
    }
    if (!info) {
        return ReadResult::Missing;
    }
    bool belongsToInfo = false;
    if (std::optional<HistoryData> history = state_->folder.ReadBinary()) {
        belongsToInfo = history->info == *info || history->earlierInfo == *info;
        state_->record.isInfoBehind = history->info != *info && belongsToInfo;
        state_->Adopt(std::move(*history));
    }
    return belongsToInfo ? ReadResult::Read : state_->ReadLists();
}

const std::string& UnitHistory::Fault() const {
    return state_->fault;
}

bool UnitHistory::KnowsDependencies(std::size_t unit) {
    return state_->HasCurrentList(unit);
}

bool UnitHistory::IsUnchanged(std::size_t unit) {
    return IsLeftOut(unit) ||
           (state_->record.HasResult(unit) && state_->HasCurrentList(unit) && state_->HasFindings(unit));
}

bool UnitHistory::IsLeftOut(std::size_t unit) {
    return state_->record.IsLeftOut(unit);
}

std::vector<bool> UnitHistory::UnitsMadeOf(std::span<const std::string> paths, std::vector<bool>& found) const {
    State& state = *state_;
    const WantedFiles wanted(paths);
    const std::vector<std::string> filePaths = state.files.Paths();
    const std::vector<FileNumber> fileOf = state.files.Files();
    std::vector<std::optional<std::vector<std::size_t>>> placesOf(
        filePaths.size()); // of each file, once it is asked for
    std::vector<bool> isMadeOf(state.record.RunSize());
    found.assign(paths.size(), false);
    const auto look = [&](std::size_t unit, std::span<const VersionNumber> list, bool onlyMissing) {
        for (const VersionNumber version : list) {
            const FileNumber file = fileOf[PlaceOf(version)];
            std::optional<std::vector<std::size_t>>& places = placesOf[PlaceOf(file)];
            if (!places) {
                places = wanted.PlacesOf(filePaths[PlaceOf(file)], state.files.StampOfFile(file));
            }
            for (const std::size_t place : *places) {
                if (!onlyMissing || wanted.IsMissing(place)) {
                    isMadeOf[unit] = found[place] = true;
                }
            }
        }
    };
    for (std::size_t unit = 0; unit < isMadeOf.size(); ++unit) {
        look(unit, state.record.NamedOf(unit), false);
        look(unit, state.record.EarlierNamedOf(unit), true);
    }
    return isMadeOf;
}

std::string UnitHistory::KeptFindings(std::size_t unit) const {
    FindingsRange range;
    {
        const State::Lock lock(state_->mutex);
        range = state_->record[unit].findings;
    }
    return state_->findings->Read(range);
}

UnitWatch UnitHistory::Watch(std::size_t unit, std::span<const std::string> inputFiles) {
    return {*this, unit, inputFiles};
}

void UnitHistory::RecordLeftOut(std::size_t unit) {
    const State::Lock lock(state_->mutex);
    state_->record.LeaveOut(unit);
}

void UnitHistory::ForgetResult(std::size_t unit) {
    const State::Lock lock(state_->mutex);
    state_->record.ForgetResult(unit);
}

bool UnitHistory::SaveProgress() {
    return state_->Save(State::Extent::Progress);
}

bool UnitHistory::Save() {
    return state_->Save(State::Extent::All);
}

UnitWatch::UnitWatch(UnitHistory& history, std::size_t unit, std::span<const std::string> inputFiles)
    : history_(&history), unit_(unit), inputFiles_(inputFiles.begin(), inputFiles.end()) {
    Begin();
}

UnitWatch::UnitWatch(UnitWatch&& other) noexcept
    : history_(std::exchange(other.history_, nullptr)), unit_(other.unit_), inputFiles_(std::move(other.inputFiles_)),
      begin_(other.begin_) {}

UnitWatch::~UnitWatch() {
    if (history_ != nullptr) {
        history_->ForgetResult(unit_);
    }
}

void UnitWatch::Begin() {
    UnitHistory::State& state = *history_->state_;
    state.files.ReadClock();
    std::vector<VersionNumber> versions;
    {
        const UnitHistory::State::Lock lock(state.mutex);
        const std::span<const VersionNumber> list = state.record.ListOf(unit_);
        versions.assign(list.begin(), list.end());
    }
    for (const VersionNumber version : versions) {
        state.files.LookAt(state.files.FileOf(version));
    }
    for (const FileNumber file : state.InputFilesOf(unit_, inputFiles_)) {
        state.files.LookAt(file);
    }
    begin_ = std::chrono::steady_clock::now();
}

std::optional<std::vector<std::string>> UnitWatch::KnownDependencies() const {
    UnitHistory::State& state = *history_->state_;
    std::vector<VersionNumber> list;
    std::size_t named = 0;
    {
        const UnitHistory::State::Lock lock(state.mutex);
        if (!state.record.HasList(unit_)) {
            return std::nullopt;
        }
        const std::span<const VersionNumber> known = state.record.ListOf(unit_);
        list.assign(known.begin(), known.end());
        named = state.record[unit_].named;
    }
    if (!std::all_of(list.begin(), list.end(),
                     [&state](VersionNumber version) { return state.files.IsCurrent(version); })) {
        return std::nullopt;
    }
    std::vector<std::string> paths;
    for (const VersionNumber version : std::span(list).first(named)) {
        paths.push_back(state.files.PathOf(state.files.FileOf(version)));
    }
    return paths;
}

bool UnitWatch::Covers(std::span<const std::string> dependencies) {
    UnitHistory::State& state = *history_->state_;
    // All are looked at, so that all are known before the unit is begun again.
    const auto tooNew = std::count_if(dependencies.begin(), dependencies.end(), [&](const std::string& dependency) {
        return state.files.IsTooNewFor(state.NumberOf(unit_, dependency), begin_);
    });
    if (tooNew != 0) {
        Begin();
    }
    return tooNew == 0;
}

void UnitWatch::Keep(std::span<const std::string> dependencies, std::optional<std::string_view> findings) {
    UnitHistory::State& state = *history_->state_;
    const SeenList list = state.MakeList(unit_, begin_, dependencies, inputFiles_);
    const std::optional<FindingsRange> range = findings ? state.KeepFindings(unit_, *findings) : std::nullopt;
    {
        const UnitHistory::State::Lock lock(state.mutex);
        state.record.SetList(unit_, list, state.NamesSameFiles(unit_, list, lock));
        if (range) {
            state.record.SetResult(unit_, *range);
        } else if (findings) {
            state.record.ForgetResult(unit_);
        }
    }
    history_ = nullptr;
    state.SaveNowAndThen();
}

} // namespace Orvanta
