#include "history/UnitHistory.h"

#include "history/HistoryState.h"
#include "platform/Paths.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace Orvanta {

using Lock = HistoryState::Lock;

struct UnitHistory::State : HistoryState {
    using HistoryState::HistoryState;

    [[nodiscard]] bool HasCurrentList(std::size_t unit);
    void ReviewVersions();
    [[nodiscard]] std::uint32_t SourceOf(std::size_t unit);
    [[nodiscard]] FindingsRange Keep(std::size_t unit, std::string_view text);
    [[nodiscard]] bool NamesSameFiles(const KnownUnit& known, std::span<const std::uint32_t> named, const Lock& lock);
    void SetList(KnownUnit& known, std::span<const std::uint32_t> list, std::size_t named, const Lock& lock);

    // Of the questions: by version, whether the file has another content now.
    std::vector<bool> isChanged;
    bool isAnyChanged = false;
    bool isReviewed = false;
};

/// Looks at all files, so that a unit whose files are all as they were costs nothing.
void UnitHistory::State::ReviewVersions() {
    isChanged.resize(files.Files().size());
    for (std::uint32_t version = 0; version < isChanged.size(); ++version) {
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

std::uint32_t UnitHistory::State::SourceOf(std::size_t unit) {
    return files.NumberOf(commands[unit].SourceFile(), *commands[unit].absoluteDirectory);
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

UnitHistory::UnitHistory(std::string folder, std::span<const CompileCommand> commands,
                         std::vector<UnitIdentity> identities)
    : state_(std::make_unique<State>(std::move(folder), commands, std::move(identities))) {}

UnitHistory::~UnitHistory() = default;

UnitHistory::ReadResult UnitHistory::Read() {
    const ReadResult result = state_->Read();
    if (result == ReadResult::Unreadable) {
        const std::string fault = state_->fault;
        state_ = std::make_unique<State>(state_->folder, state_->commands, state_->identities);
        state_->fault = fault;
    }
    return result;
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
    std::vector<const std::vector<std::size_t>*> wantedFiles;
    for (const std::string& path : state_->files.ComparablePaths()) {
        const auto place = places.find(path);
        wantedFiles.push_back(place == places.end() ? nullptr : &place->second);
    }
    std::vector<const std::vector<std::size_t>*> wanted; // by version
    for (const std::uint32_t file : state_->files.Files()) {
        wanted.push_back(wantedFiles[file]);
    }
    std::vector<bool> isMadeOf(state_->units.size());
    std::vector<bool> isMet(wanted.size()); // by version
    for (std::size_t unit = 0; unit < isMadeOf.size(); ++unit) {
        const KnownUnit& known = state_->units[unit];
        for (const std::uint32_t version : ListOf(known, state_->lists).first(known.named)) {
            if (wanted[version] != nullptr) {
                isMadeOf[unit] = true;
                isMet[version] = true;
            }
        }
    }
    for (std::size_t version = 0; version < isMet.size(); ++version) {
        if (isMet[version]) {
            std::for_each(wanted[version]->begin(), wanted[version]->end(),
                          [&found](std::size_t place) { found[place] = true; });
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

UnitWatch UnitHistory::Watch(std::size_t unit) {
    return UnitWatch(*this, unit);
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

void UnitHistory::SaveProgress() {
    state_->Save(HistoryState::Extent::Progress);
}

void UnitHistory::Save() {
    state_->Save(HistoryState::Extent::All);
}

UnitWatch::UnitWatch(UnitHistory& history, std::size_t unit) : history_(&history), unit_(unit) {
    Begin();
}

UnitWatch::~UnitWatch() {
    if (history_ != nullptr) {
        history_->ForgetResult(unit_);
    }
}

void UnitWatch::Begin() {
    UnitHistory::State& state = *history_->state_;
    state.files.ReadClock();
    std::vector<std::uint32_t> versions;
    {
        const Lock lock(state.mutex);
        const std::span<const std::uint32_t> list = ListOf(state.units[unit_], state.lists);
        versions.assign(list.begin(), list.end());
    }
    for (const std::uint32_t version : versions) {
        state.files.LookAt(state.files.FileOf(version));
    }
    state.files.LookAt(state.SourceOf(unit_));
    begin_ = std::chrono::steady_clock::now();
}

bool UnitWatch::Covers(std::span<const std::string> dependencies) {
    FileVersions& files = history_->state_->files;
    const std::string& directory = *history_->state_->commands[unit_].absoluteDirectory;
    // All are looked at, so that all are known before the unit is begun again.
    const auto untold = std::count_if(dependencies.begin(), dependencies.end(), [&](const std::string& dependency) {
        return !files.IsCurrent(files.VersionSeenBy(files.NumberOf(dependency, directory), begin_));
    });
    if (untold != 0) {
        Begin();
    }
    return untold == 0;
}

void UnitWatch::Keep(std::span<const std::string> dependencies, std::optional<std::string_view> findings) {
    UnitHistory::State& state = *history_->state_;
    const std::string& directory = *state.commands[unit_].absoluteDirectory;
    std::vector<std::uint32_t> list;
    list.reserve(dependencies.size() + 1);
    for (const std::string& dependency : dependencies) {
        list.push_back(state.files.VersionSeenBy(state.files.NumberOf(dependency, directory), begin_));
    }
    const std::uint32_t source = state.files.VersionSeenBy(state.SourceOf(unit_), begin_);
    if (std::find(list.begin(), list.end(), source) == list.end()) {
        list.push_back(source);
    }
    std::optional<FindingsRange> range;
    if (findings) {
        range = state.Keep(unit_, *findings);
    }
    {
        const Lock lock(state.mutex);
        KnownUnit& known = state.units[unit_];
        const std::span<const std::uint32_t> before = ListOf(known, state.lists);
        const bool isSame = known.hasList != 0 && known.inputs == state.identities[unit_].inputs &&
                            known.named == dependencies.size() &&
                            std::equal(before.begin(), before.end(), list.begin(), list.end());
        if (!isSame) {
            state.SetList(known, list, dependencies.size(), lock);
            ForgetFindings(known);
        }
        known.inputs = state.identities[unit_].inputs;
        known.leftOutWith = {};
        if (range) {
            known.hasResult = 1;
            known.findings = *range;
        }
        state.isDirty = state.isDirty || !isSame || range;
    }
    history_ = nullptr;
    state.SaveNowAndThen();
}

} // namespace Orvanta
