#include "history/UnitHistory.h"

#include "history/HistoryState.h"
#include "history/PathShortener.h"
#include "history/WantedFiles.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

using Moment = FileVersions::Moment;
using WhenAbsent = FileVersions::WhenAbsent;

} // namespace

struct UnitHistory::State : HistoryState {
    using HistoryState::HistoryState;

    // Of the questions.
    [[nodiscard]] bool IsCurrent(VersionNumber version);
    [[nodiscard]] std::optional<VersionNumber> FirstChanged(std::size_t unit);
    [[nodiscard]] bool HasCurrentList(std::size_t unit);
    [[nodiscard]] bool HasFindings(std::size_t unit);

    // Of a run of a unit.
    [[nodiscard]] const std::string& DirectoryOfUnit(std::size_t unit) const {
        return *commands[unit].absoluteDirectory;
    }

    [[nodiscard]] FileNumber NumberOf(std::size_t unit, std::string_view path);
    [[nodiscard]] FileNumber SourceOf(std::size_t unit);
    [[nodiscard]] std::vector<FileNumber> InputFilesOf(std::size_t unit, std::span<const std::string> named);
    [[nodiscard]] SeenList MakeList(std::size_t unit, Moment begin, std::span<const std::string> dependencies,
                                    std::span<const std::string> inputFiles);
    [[nodiscard]] std::optional<FindingsRange> KeepFindings(std::size_t unit, std::string_view text);
    [[nodiscard]] bool NamesSameFiles(std::size_t unit, const SeenList& list, const Lock& lock) const;

    PathShortener shortener;
    std::vector<signed char> isCurrent; // by version: 1 it is, 0 it is not, -1 not asked yet
};

/// Asked once for each version: ten thousand units name the same headers.
bool UnitHistory::State::IsCurrent(VersionNumber version) {
    // By one thread at a time: only the questions before the run ask here.
    const std::size_t place = PlaceOf(version);
    if (place >= isCurrent.size()) {
        isCurrent.resize(place + 1, -1);
    }
    if (isCurrent[place] < 0) {
        isCurrent[place] = files.IsCurrent(version) ? 1 : 0;
    }
    return isCurrent[place] == 1;
}

/// The first version of the unit's list that its file does not have now.
std::optional<VersionNumber> UnitHistory::State::FirstChanged(std::size_t unit) {
    const std::span<const VersionNumber> list = record.ListOf(unit);
    const auto changed =
        std::find_if_not(list.begin(), list.end(), [this](VersionNumber version) { return IsCurrent(version); });
    return changed == list.end() ? std::nullopt : std::optional(*changed);
}

bool UnitHistory::State::HasCurrentList(std::size_t unit) {
    return record.HasList(unit) && !FirstChanged(unit);
}

/// Whether what the last success of the unit found can be read. It is looked at here, before anything relies on it:
/// when the report is written it is too late to run the unit.
bool UnitHistory::State::HasFindings(std::size_t unit) {
    if (record[unit].hasResult == 0) {
        return false;
    }
    if (findings->IsIntact(record[unit].findings)) {
        return true;
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

FileNumber UnitHistory::State::SourceOf(std::size_t unit) {
    return NumberOf(unit, JoinPath(DirectoryOfUnit(unit), commands[unit].SourceFile()));
}

/// The files that decide the unit's result and that it is not made of, its source first.
std::vector<FileNumber> UnitHistory::State::InputFilesOf(std::size_t unit, std::span<const std::string> named) {
    std::vector<FileNumber> numbers = {SourceOf(unit)};
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

/// The list of a unit that was begun at `begin`, in the order that SeenList gives. What a person has added stays,
/// unless the core lists it now. Of the rest, one may be missing where the compiler only looked for it; a source, or a
/// file that the core has listed, can't be missing without a doubt about what was seen.
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
    // Copied, since another worker may put a list in and so move all of them.
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
    // The size first: it is known without going through the text.
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

/// Whether the dependency information says the same of the unit already: to write it anew costs more than all the rest.
bool UnitHistory::State::NamesSameFiles(std::size_t unit, const SeenList& list, const Lock&) const {
    const KnownUnit& row = record[unit];
    const std::span<const VersionNumber> before = record.NamedOf(unit);
    return row.hasList != 0 && row.named == list.named && row.added == list.added &&
           std::equal(before.begin(), before.end(), list.versions.begin(),
                      [this](VersionNumber left, VersionNumber right) {
                          return left == right || files.FileOf(left) == files.FileOf(right);
                      });
}

UnitHistory::UnitHistory(std::string folder, std::span<const CompileCommand> commands,
                         std::vector<UnitIdentity> identities, TellUser tell)
    : state_(std::make_unique<State>(std::move(folder), commands, std::move(identities), std::move(tell))) {}

UnitHistory::~UnitHistory() = default;

UnitHistory::ReadResult UnitHistory::Read() {
    return state_->Read();
}

const std::string& UnitHistory::Fault() const {
    return state_->fault;
}

bool UnitHistory::KnowsDependencies(std::size_t unit) {
    return state_->HasCurrentList(unit);
}

bool UnitHistory::IsUnchanged(std::size_t unit) {
    return IsLeftOut(unit) ||
           (state_->record[unit].hasResult != 0 && state_->HasCurrentList(unit) && state_->HasFindings(unit));
}

UnitStanding UnitHistory::StandingOf(std::size_t unit) {
    using Kind = UnitStanding::Kind;
    if (IsLeftOut(unit)) {
        return {Kind::LeftOut};
    }
    if (state_->record[unit].hasList == 0) {
        return {Kind::Unknown};
    }
    if (!state_->record.HasList(unit)) {
        return {Kind::InputsChanged};
    }
    if (const std::optional<VersionNumber> changed = state_->FirstChanged(unit)) {
        return {Kind::FileChanged, state_->files.PathOf(state_->files.FileOf(*changed))};
    }
    if (IsUnchanged(unit)) {
        return {Kind::Unchanged};
    }
    // The question has forgotten a result whose findings are damaged.
    return {state_->record[unit].findings.size != 0 ? Kind::FindingsLost : Kind::NoResult};
}

std::vector<std::string> UnitHistory::SourcesMadeOf(const std::string& path) const {
    State& state = *state_;
    const std::string target = ResolveLinks(path);
    std::unordered_map<FileNumber, bool> isWanted; // each file is compared once, however many units name it
    const auto isOf = [&](VersionNumber version) {
        const auto [answer, isNew] = isWanted.try_emplace(state.files.FileOf(version));
        if (isNew) {
            const std::string known = state.files.PathOf(answer->first);
            answer->second = known == path || known == target;
        }
        return answer->second;
    };
    std::set<std::string> sources;
    for (std::size_t unit = 0; unit < state.record.Size(); ++unit) {
        const std::span<const VersionNumber> named = state.record.NamedOf(unit);
        if (std::any_of(named.begin(), named.end(), isOf)) {
            const VersionNumber source = state.record.ListOf(unit)[state.record[unit].sourcePlace];
            sources.insert(state.files.PathOf(state.files.FileOf(source)));
        }
    }
    return {sources.begin(), sources.end()};
}

bool UnitHistory::IsLeftOut(std::size_t unit) {
    return state_->record.IsLeftOut(unit);
}

std::vector<bool> UnitHistory::UnitsMadeOf(std::span<const std::string> paths, std::vector<bool>& found) const {
    State& state = *state_;
    std::vector<FileNumber> sources; // by unit
    for (std::size_t unit = 0; unit < state.record.RunSize(); ++unit) {
        sources.push_back(state.SourceOf(unit));
    }
    const WantedFiles wanted(paths);
    std::unordered_map<FileNumber, std::vector<std::size_t>> placesOf; // of each file that was met
    std::vector<bool> isMadeOf(state.record.RunSize());
    found.assign(paths.size(), false);
    // Each file is compared with the wanted ones once, however many units name it.
    const auto meet = [&](std::size_t unit, FileNumber file, bool onlyMissing) {
        const auto [places, isNew] = placesOf.try_emplace(file);
        if (isNew) {
            places->second = wanted.PlacesOf(state.files.PathOf(file), state.files.StampOfFile(file));
        }
        for (const std::size_t place : places->second) {
            if (!onlyMissing || wanted.IsMissing(place)) {
                isMadeOf[unit] = found[place] = true;
            }
        }
    };
    for (std::size_t unit = 0; unit < isMadeOf.size(); ++unit) {
        meet(unit, sources[unit], false);
        for (const VersionNumber version : state.record.NamedOf(unit)) {
            meet(unit, state.files.FileOf(version), false);
        }
        // Only for what is gone: a file that is there is found by what units are made of now.
        for (const VersionNumber version : state.record.EarlierNamedOf(unit)) {
            meet(unit, state.files.FileOf(version), true);
        }
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

// A file that is looked at before the unit begins is known to be what the unit sees. For those that nobody knew of,
// only their age can tell, or another watch.
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
    // After the looks: then each of them counts as early.
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
        // Of the list, the core has listed only these.
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
    // Before the lock is taken: it may write to the disk.
    const std::optional<FindingsRange> range = findings ? state.KeepFindings(unit_, *findings) : std::nullopt;
    {
        const UnitHistory::State::Lock lock(state.mutex);
        state.record.SetList(unit_, list, state.NamesSameFiles(unit_, list, lock));
        if (range) {
            state.record.SetResult(unit_, *range);
        } else if (findings) {
            // It has run and its findings are lost: what it had before is no longer true.
            state.record.ForgetResult(unit_);
        }
    }
    // Kept: the destructor has nothing to forget.
    history_ = nullptr;
    state.SaveNowAndThen();
}

} // namespace Orvanta
