#include "history/NamedDependencies.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

Fingerprint ArgumentsFingerprint(std::span<const std::string> arguments) {
    FingerprintBuilder builder;
    for (const std::string& argument : arguments) {
        builder.Add(argument);
    }
    return builder.Value();
}

// For a multimap, whose finds are compared whole: two units may have one key.
std::uint64_t KeyOf(const Fingerprint& source, std::uint32_t namesake) {
    return source.low + namesake;
}

} // namespace

/// By file: the version that the unit at hand saw.
class SeenVersions {
public:
    /// Forgets the unit before. By raising a number: clearing the table would take longer than filling it.
    void Begin() {
        ++unit_;
        order_.clear();
    }

    /// Only the first version of a file counts.
    void Add(FileNumber file, VersionNumber version, bool isListed) {
        if (PlaceOf(file) >= seen_.size()) {
            seen_.resize(PlaceOf(file) + 1);
        }
        if (!Has(file)) {
            seen_[PlaceOf(file)] = {unit_, version, isListed, false};
            order_.push_back(file);
        }
    }

    [[nodiscard]] bool Has(FileNumber file) const {
        return PlaceOf(file) < seen_.size() && seen_[PlaceOf(file)].unit == unit_;
    }

    /// Whether the core has listed the file.
    [[nodiscard]] bool IsListed(FileNumber file) const { return Has(file) && seen_[PlaceOf(file)].isListed; }

    /// Only of a file that it has.
    VersionNumber Take(FileNumber file) {
        seen_[PlaceOf(file)].isTaken = true;
        return seen_[PlaceOf(file)].version;
    }

    /// Appends the versions that were not taken.
    void AppendRest(std::vector<VersionNumber>& list) const {
        for (const FileNumber file : order_) {
            if (!seen_[PlaceOf(file)].isTaken) {
                list.push_back(seen_[PlaceOf(file)].version);
            }
        }
    }

private:
    struct Seen {
        std::size_t unit = 0; // from 1
        VersionNumber version = {};
        bool isListed = false;
        bool isTaken = false;
    };

    std::size_t unit_ = 0;
    std::vector<Seen> seen_;        // by file
    std::vector<FileNumber> order_; // the files of this unit
};

InfoMatcher::InfoMatcher(const HistoryRecord& record) : record_(record) {
    unitsById_.reserve(record.Size());
    for (std::size_t unit = 0; unit < record.Size(); ++unit) {
        AddUnit(unit);
    }
}

void InfoMatcher::AddUnit(std::size_t unit) {
    unitsById_.emplace(KeyOf(record_[unit].source, record_[unit].namesake), unit);
}

std::span<const std::size_t> InfoMatcher::UnitsOf(const DependencyInfoEntry& entry) {
    found_.clear();
    if (entry.id) {
        const std::pair<std::string_view, std::uint32_t> id = SplitId(*entry.id);
        const Fingerprint source = FingerprintOf(id.first);
        const auto [first, last] = unitsById_.equal_range(KeyOf(source, id.second));
        // The key may be that of another unit as well.
        const auto unit = std::find_if(first, last, [&](const auto& candidate) {
            return record_[candidate.second].source == source && record_[candidate.second].namesake == id.second;
        });
        if (unit != last) {
            found_.push_back(unit->second);
        }
        return found_;
    }
    // Entries without an id are rare: this index is not made for the others.
    for (std::size_t unit = unitsByArguments_.size(); unit < record_.RunSize(); ++unit) {
        unitsByArguments_.emplace(record_[unit].arguments.low, unit);
    }
    const Fingerprint arguments = ArgumentsFingerprint(entry.arguments);
    const auto [first, last] = unitsByArguments_.equal_range(arguments.low);
    for (auto unit = first; unit != last; ++unit) {
        if (record_[unit->second].arguments == arguments) {
            found_.push_back(unit->second);
        }
    }
    return found_;
}

NamedDependencies::NamedDependencies(HistoryRecord& record, std::span<const CompileCommand> commands,
                                     FileVersions& files)
    : record_(record), commands_(commands), files_(files), matcher_(record), named_(record.Size()) {}

void NamedDependencies::Take(const DependencyInfoEntry& entry) {
    const std::span<const std::size_t> units = matcher_.UnitsOf(entry);
    if (entry.id && (units.empty() || units.front() >= record_.RunSize())) {
        TakeOther(entry, units.empty() ? std::nullopt : std::optional(units.front()));
        return;
    }
    for (const std::size_t unit : units) {
        // What another hand wrote without an id, or twice, is written in our way by the next save.
        record_.isInfoBehind = record_.isInfoBehind || !entry.id || named_[unit] ||
                               record_[unit].arguments != ArgumentsFingerprint(entry.arguments);
        if (entry.id) {
            named_[unit].reset();
        }
        TakeFor(unit, entry, *commands_[unit].absoluteDirectory, commands_[unit].SourceFile());
    }
}

// The id of a unit that is not of this run tells its folder and its source.
void NamedDependencies::TakeOther(const DependencyInfoEntry& entry, std::optional<std::size_t> known) {
    constexpr std::string_view Separator = ": ";
    const auto [id, namesake] = SplitId(*entry.id);
    const std::size_t end = id.find(Separator);
    if (end == std::string_view::npos && !known) {
        return; // nobody could say whose source that is
    }
    const std::size_t unit = known ? *known : record_.AddOther(FingerprintOf(id), namesake);
    if (!known) {
        matcher_.AddUnit(unit);
        named_.resize(record_.Size());
    }
    named_[unit].reset();
    const bool isTold = end != std::string_view::npos;
    TakeFor(unit, entry, std::string(isTold ? id.substr(0, end) : ""),
            isTold ? id.substr(end + Separator.size()) : std::string_view());
}

void NamedDependencies::TakeFor(std::size_t unit, const DependencyInfoEntry& entry, const std::string& directory,
                                std::string_view source) {
    if (!named_[unit]) {
        named_[unit].emplace();
        named_[unit]->source = files_.NumberOf(source, directory);
    }
    Named& named = *named_[unit];
    const auto addAll = [&](const std::vector<std::string>& paths, std::vector<FileNumber>& files) {
        files.reserve(files.size() + paths.size());
        for (const std::string& path : paths) {
            files.push_back(files_.NumberOf(path, directory));
        }
    };
    addAll(entry.dependencies, named.files);
    addAll(entry.added, named.added);
}

void NamedDependencies::PutIntoRecord() {
    SeenVersions seen;
    for (std::size_t unit = 0; unit < record_.Size(); ++unit) {
        if (!named_[unit]) {
            record_.DropList(unit);
            continue;
        }
        seen.Begin();
        const std::span<const VersionNumber> before = record_.ListOf(unit);
        for (std::size_t place = 0; place < before.size(); ++place) {
            const FileNumber file = files_.FileOf(before[place]);
            seen.Add(file, before[place], place < record_[unit].named);
            named_[unit]->source = place == record_[unit].sourcePlace ? file : named_[unit]->source;
        }
        record_.PutList(unit, ListOf(unit, *named_[unit], seen));
        named_[unit].reset();
    }
    record_.isDirty = true; // the binary file is to belong to this JSON file
}

// What the core has listed and the file names goes first, what a hand has added follows. A file that the core has
// listed and the hand has taken away stays among the rest: the unit was made of it, and it counts until the next
// listing.
SeenList NamedDependencies::ListOf(std::size_t unit, const Named& named, SeenVersions& seen) {
    SeenList list;
    std::vector<VersionNumber> added;
    const auto take = [&](FileNumber file) {
        return seen.Has(file) ? seen.Take(file) : files_.UnseenVersion(file);
    };
    for (const FileNumber file : named.files) {
        const bool isTold = std::find(named.added.begin(), named.added.end(), file) != named.added.end();
        // Where the unit's list is known, that decides; only where it is not, the file's own word does.
        const bool isAdded = record_[unit].hasList != 0 ? !seen.IsListed(file) : isTold;
        // What the file says of itself is then not what we know, and is put right by the next save.
        record_.isInfoBehind = record_.isInfoBehind || isAdded != isTold;
        (isAdded ? added : list.versions).push_back(take(file));
    }
    list.named = list.versions.size();
    list.added = added.size();
    list.versions.insert(list.versions.end(), added.begin(), added.end());
    const VersionNumber source = take(named.source);
    // Programs and what the compiler looked for stand in no file, and still count.
    seen.AppendRest(list.versions);
    const auto place = std::find(list.versions.begin(), list.versions.end(), source);
    list.sourcePlace = static_cast<std::size_t>(place - list.versions.begin());
    if (place == list.versions.end()) {
        list.versions.push_back(source);
    }
    return list;
}

} // namespace Orvanta
