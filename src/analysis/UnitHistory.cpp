#include "analysis/UnitHistory.h"

#include "analysis/DependencyInfo.h"
#include "analysis/FileVersions.h"
#include "analysis/FindingsStore.h"
#include "analysis/HistoryFile.h"
#include "analysis/NamedDependencies.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <fstream>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

using std::chrono::steady_clock;

using Lock = std::lock_guard<std::mutex>;

constexpr std::string_view InfoName = "depend_info.json";
constexpr std::string_view BinaryName = "unit_history.bin";

void ForgetFindings(KnownUnit& unit) {
    unit.hasResult = 0;
    unit.findings = {};
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

struct UnitHistory::State {
    State(std::string folderGiven, std::span<const CompileCommand> commandsGiven,
          std::vector<UnitIdentity> identitiesGiven);

    [[nodiscard]] std::string PathOf(std::string_view name) const { return JoinPath(folder, name); }

    void ReadBinary(std::optional<HistoryData>& history) const;
    void Adopt(HistoryData history);
    void ForgetUnreadableFindings(const HistoryData& history);
    void ReadLists(std::istream& input);

    [[nodiscard]] FindingsRange Keep(std::size_t unit, std::string_view text);
    [[nodiscard]] bool HasCurrentList(std::size_t unit);
    void ReviewVersions();
    [[nodiscard]] std::uint32_t SourceOf(std::size_t unit);
    void SetList(KnownUnit& known, std::span<const std::uint32_t> list, std::size_t named, const Lock& lock);
    [[nodiscard]] bool NamesSameFiles(const KnownUnit& known, std::span<const std::uint32_t> named, const Lock& lock);

    void SaveNowAndThen();
    void Save(bool isLast);
    [[nodiscard]] HistoryData Snapshot(std::vector<std::size_t>& positions, const Lock& lock);
    void WriteDependencyInfo(HistoryData& history, const std::vector<std::size_t>& positions);

    const std::string folder;
    const std::span<const CompileCommand> commands;
    const std::vector<UnitIdentity> identities;
    std::string fault;
    FileVersions files;

    // Of the questions: by version, whether the file has another content now.
    std::vector<bool> isChanged;
    bool isAnyChanged = false;
    bool isReviewed = false;

    std::mutex mutex;
    std::vector<KnownUnit> units;                 // by position in the run; guarded by mutex, as all that follows
    std::vector<std::uint32_t> lists;             // numbers of versions
    std::unique_ptr<FindingsStore> findings;      //
    std::optional<ContentFingerprint> infoOnDisk; // what `depend_info.json` holds; absent: nothing of use
    bool isInfoBehind = false;                    // it lacks what is known
    bool isDirty = false;                         // there is something to save

    std::mutex saving; // one at a time; taken before `mutex`
    steady_clock::time_point lastSaved = steady_clock::now();
    steady_clock::duration lastDuration{};
};

UnitHistory::State::State(std::string folderGiven, std::span<const CompileCommand> commandsGiven,
                          std::vector<UnitIdentity> identitiesGiven)
    : folder(std::move(folderGiven)), commands(commandsGiven), identities(std::move(identitiesGiven)), files(folder),
      units(identities.size()), findings(std::make_unique<FindingsStore>(folder)) {}

void UnitHistory::State::ReadBinary(std::optional<HistoryData>& history) const {
    const std::string path = PathOf(BinaryName);
    if (!PathExists(path)) {
        return;
    }
    std::ifstream input(NativePath(path), std::ios::binary);
    if (!input.is_open()) {
        throw ZelmException(path + ": the file can't be opened");
    }
    history = ReadHistory(input);
}

/// Takes over what the binary file knows of the units of this run.
void UnitHistory::State::Adopt(HistoryData history) {
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

void UnitHistory::State::ForgetUnreadableFindings(const HistoryData& history) {
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
void UnitHistory::State::ReadLists(std::istream& input) {
    NamedDependencies named(identities, commands, files);
    ReadDependencyInfo(input, [&named](const DependencyInfoEntry& entry) { named.Take(entry); });
    named.MakeLists(units, lists);
    isDirty = true; // the binary file is to belong to this JSON file
    isInfoBehind = isInfoBehind || named.IsOtherwiseWritten();
}

/// Looks at all files, so that a unit whose files are all as they were costs nothing.
void UnitHistory::State::ReviewVersions() {
    const std::uint32_t count = files.Count();
    isChanged.resize(count);
    for (std::uint32_t version = 0; version < count; ++version) {
        isChanged[version] = !files.IsCurrent(version);
        isAnyChanged = isAnyChanged || isChanged[version];
    }
    isReviewed = true;
}

bool UnitHistory::State::HasCurrentList(std::size_t unit) {
    const KnownUnit& known = units[unit];
    if (known.hasList == 0 || known.inputs != identities[unit].inputs) {
        return false;
    }
    if (!isReviewed) {
        ReviewVersions();
    }
    const std::span<const std::uint32_t> list = ListOf(known, lists);
    return !isAnyChanged ||
           std::none_of(list.begin(), list.end(), [this](std::uint32_t version) { return isChanged[version]; });
}

/// Where the findings of a unit stand from now on: where they do already when they are as before.
FindingsRange UnitHistory::State::Keep(std::size_t unit, std::string_view text) {
    {
        const Lock lock(mutex);
        const FindingsRange& before = units[unit].findings;
        if (before.size == text.size() && before.text == FingerprintOf(text)) {
            return before;
        }
    }
    return findings->Append(text);
}

std::uint32_t UnitHistory::State::SourceOf(std::size_t unit) {
    return files.NumberOf(commands[unit].SourceFile(), *commands[unit].absoluteDirectory);
}

bool UnitHistory::State::NamesSameFiles(const KnownUnit& known, std::span<const std::uint32_t> named, const Lock&) {
    const std::span<const std::uint32_t> before = ListOf(known, lists).first(known.named);
    return known.hasList != 0 && std::equal(before.begin(), before.end(), named.begin(), named.end(),
                                            [this](std::uint32_t left, std::uint32_t right) {
                                                return left == right || files.FileOf(left) == files.FileOf(right);
                                            });
}

void UnitHistory::State::SetList(KnownUnit& known, std::span<const std::uint32_t> list, std::size_t named,
                                 const Lock& lock) {
    isInfoBehind = isInfoBehind || !NamesSameFiles(known, list.first(named), lock);
    known.hasList = 1;
    known.named = static_cast<std::uint32_t>(named);
    known.unnamed = static_cast<std::uint32_t>(list.size() - named);
    known.listBegin = lists.size();
    lists.insert(lists.end(), list.begin(), list.end());
}

/// The state as it is to be saved, without what no unit needs any more. `positions` are those of its units in the run.
HistoryData UnitHistory::State::Snapshot(std::vector<std::size_t>& positions, const Lock&) {
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

void UnitHistory::State::WriteDependencyInfo(HistoryData& history, const std::vector<std::size_t>& positions) {
    DependencyInfoWriter writer(PathOf(InfoName));
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
    infoOnDisk = writer.Commit();
    history.isAhead = 0;
}

void UnitHistory::State::Save(bool isLast) {
    const std::lock_guard oneAtATime(saving);
    const steady_clock::time_point begin = steady_clock::now();
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
        writesInfo = !infoOnDisk || (isLast && isInfoBehind);
        isDirty = false;
        isInfoBehind = isInfoBehind && !writesInfo;
    }
    try {
        MakeFolders(folder);
        if (writesInfo) {
            WriteDependencyInfo(history, positions);
        }
        history.dependencyInfo = *infoOnDisk;
        WriteHistoryFile(PathOf(BinaryName), history);
    } catch (...) {
        const Lock lock(mutex);
        isDirty = true;
        isInfoBehind = isInfoBehind || writesInfo;
        throw;
    }
    findings->RemoveOthers();
    lastSaved = steady_clock::now();
    lastDuration = lastSaved - begin;
}

/// Saves when enough has been learned for it: rarely enough to cost little, often enough for a kill to cost little.
void UnitHistory::State::SaveNowAndThen() {
    constexpr int MostShare = 20; // of the time goes into saving: one in so many
    {
        const std::unique_lock isFree(saving, std::try_to_lock);
        if (!isFree || steady_clock::now() - lastSaved <
                           std::max<steady_clock::duration>(std::chrono::seconds(1), MostShare * lastDuration)) {
            return;
        }
    }
    try {
        Save(false);
    } catch (const ZelmException&) {
        // The last save tells it, if it is still so.
        const std::lock_guard oneAtATime(saving);
        lastSaved = steady_clock::now();
    }
}

UnitHistory::UnitHistory(std::string folder, std::span<const CompileCommand> commands,
                         std::vector<UnitIdentity> identities)
    : state_(std::make_unique<State>(std::move(folder), commands, std::move(identities))) {}

UnitHistory::~UnitHistory() = default;

UnitHistory::ReadResult UnitHistory::Read() {
    State& state = *state_;
    const std::string path = state.PathOf(InfoName);
    if (!PathExists(path)) {
        return ReadResult::Missing;
    }
    const std::optional<ContentFingerprint> info = FingerprintOfFile(path);
    std::ifstream input(NativePath(path), std::ios::binary);
    if (!info || !input.is_open()) {
        throw ZelmException(path + ": the file can't be read");
    }
    std::optional<HistoryData> history;
    state.ReadBinary(history);
    const bool belongsToInfo = history && history->dependencyInfo == *info;
    if (history) {
        state.Adopt(std::move(*history));
    }
    if (!belongsToInfo) {
        try {
            state.ReadLists(input);
        } catch (const ZelmException& fault) {
            state_ = std::make_unique<State>(state.folder, state.commands, state.identities);
            state_->fault = path + ": " + fault.what();
            return ReadResult::Unreadable;
        }
    }
    state.infoOnDisk = info;
    return ReadResult::Read;
}

const std::string& UnitHistory::Fault() const {
    return state_->fault;
}

bool UnitHistory::KnowsDependencies(std::size_t unit) {
    return state_->HasCurrentList(unit);
}

bool UnitHistory::IsUnchanged(std::size_t unit) {
    return IsLeftOut(unit) || (state_->units[unit].hasResult != 0 && state_->HasCurrentList(unit));
}

bool UnitHistory::IsLeftOut(std::size_t unit) {
    const Fingerprint& with = state_->units[unit].leftOutWith;
    return with != Fingerprint{} && with == state_->identities[unit].inputs;
}

std::vector<bool> UnitHistory::UnitsMadeOf(std::span<const std::string> paths, std::vector<bool>& found) const {
    std::unordered_map<std::string, std::vector<std::size_t>> places; // in `paths`
    for (std::size_t place = 0; place < paths.size(); ++place) {
        places[ComparablePath(paths[place])].push_back(place);
    }
    found.assign(paths.size(), false);
    std::vector<const std::vector<std::size_t>*> wanted; // by file
    for (const std::string& path : state_->files.ComparablePaths()) {
        const auto place = places.find(path);
        wanted.push_back(place == places.end() ? nullptr : &place->second);
    }
    std::vector<bool> isMadeOf(state_->units.size());
    for (std::size_t unit = 0; unit < isMadeOf.size(); ++unit) {
        const KnownUnit& known = state_->units[unit];
        for (const std::uint32_t version : ListOf(known, state_->lists).first(known.named)) {
            const std::vector<std::size_t>* const here = wanted[state_->files.FileOf(version)];
            if (here != nullptr) {
                isMadeOf[unit] = true;
                std::for_each(here->begin(), here->end(), [&found](std::size_t place) { found[place] = true; });
            }
        }
    }
    return isMadeOf;
}

std::string UnitHistory::KeptFindings(std::size_t unit) const {
    FindingsRange range;
    {
        const Lock lock(state_->mutex);
        range = state_->units[unit].findings;
    }
    return state_->findings->Read(range);
}

UnitHistory::Moment UnitHistory::Begin(std::size_t unit) {
    State& state = *state_;
    std::vector<std::uint32_t> versions;
    {
        const Lock lock(state.mutex);
        const std::span<const std::uint32_t> list = ListOf(state.units[unit], state.lists);
        versions.assign(list.begin(), list.end());
    }
    for (const std::uint32_t version : versions) {
        state.files.LookAt(state.files.FileOf(version));
    }
    state.files.LookAt(state.SourceOf(unit));
    return {steady_clock::now()};
}

void UnitHistory::Record(std::size_t unit, Moment moment, std::span<const std::string> dependencies,
                         std::optional<std::string_view> findings) {
    State& state = *state_;
    const std::string& directory = *state.commands[unit].absoluteDirectory;
    std::vector<std::uint32_t> list;
    list.reserve(dependencies.size() + 1);
    for (const std::string& dependency : dependencies) {
        list.push_back(state.files.VersionSeenBy(state.files.NumberOf(dependency, directory), moment.begin));
    }
    const std::uint32_t source = state.files.VersionSeenBy(state.SourceOf(unit), moment.begin);
    if (std::find(list.begin(), list.end(), source) == list.end()) {
        list.push_back(source);
    }
    std::optional<FindingsRange> range;
    if (findings) {
        range = state.Keep(unit, *findings);
    }
    {
        const Lock lock(state.mutex);
        KnownUnit& known = state.units[unit];
        const std::span<const std::uint32_t> before = ListOf(known, state.lists);
        const bool isSame = known.hasList != 0 && known.inputs == state.identities[unit].inputs &&
                            known.named == dependencies.size() &&
                            std::equal(before.begin(), before.end(), list.begin(), list.end());
        if (!isSame) {
            state.SetList(known, list, dependencies.size(), lock);
            ForgetFindings(known);
        }
        known.inputs = state.identities[unit].inputs;
        known.leftOutWith = {};
        if (range) {
            known.hasResult = 1;
            known.findings = *range;
        }
        state.isDirty = state.isDirty || !isSame || range;
    }
    state.SaveNowAndThen();
}

void UnitHistory::RecordLeftOut(std::size_t unit) {
    const Lock lock(state_->mutex);
    KnownUnit& known = state_->units[unit];
    if (known.leftOutWith != state_->identities[unit].inputs) {
        known.leftOutWith = state_->identities[unit].inputs;
        ForgetFindings(known);
        state_->isDirty = true;
    }
}

void UnitHistory::ForgetResult(std::size_t unit) {
    const Lock lock(state_->mutex);
    KnownUnit& known = state_->units[unit];
    state_->isDirty = state_->isDirty || known.hasResult != 0 || known.leftOutWith != Fingerprint{};
    known.leftOutWith = {};
    ForgetFindings(known);
}

void UnitHistory::Save() {
    state_->Save(true);
}

} // namespace Orvanta
