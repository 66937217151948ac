#include "history/NamedDependencies.h"

namespace Orvanta {

namespace {

Fingerprint ArgumentsFingerprint(const std::vector<std::string>& arguments) {
    FingerprintBuilder builder;
    for (const std::string& argument : arguments) {
        builder.Add(argument);
    }
    return builder.Value();
}

/// By file: the version that the unit at hand saw.
class SeenVersions {
public:
    void Begin() {
        ++unit_;
        order_.clear();
    }

    void Add(std::uint32_t file, std::uint32_t version) {
        if (file >= seen_.size()) {
            seen_.resize(file + 1);
        }
        if (seen_[file].unit != unit_) {
            seen_[file] = {unit_, version, false};
            order_.push_back(file);
        }
    }

    std::optional<std::uint32_t> Take(std::uint32_t file) {
        if (file >= seen_.size() || seen_[file].unit != unit_) {
            return std::nullopt;
        }
        seen_[file].isTaken = true;
        return seen_[file].version;
    }

    /// Appends the versions that were not taken.
    std::uint32_t AppendRest(std::vector<std::uint32_t>& list) const {
        const std::size_t before = list.size();
        for (const std::uint32_t file : order_) {
            if (!seen_[file].isTaken) {
                list.push_back(seen_[file].version);
            }
        }
        return static_cast<std::uint32_t>(list.size() - before);
    }

private:
    struct Seen {
        std::size_t unit = 0; // from 1
        std::uint32_t version = 0;
        bool isTaken = false;
    };

    std::size_t unit_ = 0;
    std::vector<Seen> seen_;           // by file
    std::vector<std::uint32_t> order_; // the files of this unit
};

} // namespace

NamedDependencies::NamedDependencies(std::span<const UnitIdentity> identities, std::span<const CompileCommand> commands,
                                     FileVersions& files)
    : identities_(identities), commands_(commands), files_(files), named_(identities.size()) {
    unitsById_.reserve(identities.size());
    for (std::size_t unit = 0; unit < identities.size(); ++unit) {
        unitsById_.emplace(identities[unit].id, unit);
    }
}

void NamedDependencies::Take(const DependencyInfoEntry& entry) {
    if (entry.id) {
        const auto unit = unitsById_.find(*entry.id);
        if (unit == unitsById_.end()) {
            isOtherwiseWritten_ = true;
            return;
        }
        isOtherwiseWritten_ = isOtherwiseWritten_ || named_[unit->second].has_value() ||
                              commands_[unit->second].arguments.ToVector() != entry.arguments;
        named_[unit->second].reset();
        TakeFor(unit->second, entry);
        return;
    }
    isOtherwiseWritten_ = true;
    FindArguments();
    const auto [first, last] = unitsByArguments_.equal_range(ArgumentsFingerprint(entry.arguments).low);
    for (auto unit = first; unit != last; ++unit) {
        TakeFor(unit->second, entry);
    }
}

void NamedDependencies::FindArguments() {
    for (std::size_t unit = unitsByArguments_.size(); unit < commands_.size(); ++unit) {
        unitsByArguments_.emplace(ArgumentsFingerprint(commands_[unit].arguments.ToVector()).low, unit);
    }
}

void NamedDependencies::TakeFor(std::size_t unit, const DependencyInfoEntry& entry) {
    if (!named_[unit]) {
        named_[unit].emplace();
    }
    named_[unit]->reserve(entry.dependencies.size());
    for (const std::string& dependency : entry.dependencies) {
        named_[unit]->push_back(files_.NumberOf(dependency, *commands_[unit].absoluteDirectory));
    }
}

void NamedDependencies::MakeLists(std::span<KnownUnit> units, std::vector<std::uint32_t>& lists) const {
    std::vector<std::uint32_t> newLists;
    SeenVersions seen;
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        KnownUnit& known = units[unit];
        seen.Begin();
        for (const std::uint32_t version : ListOf(known, lists)) {
            seen.Add(files_.FileOf(version), version);
        }
        known.listBegin = newLists.size();
        known.named = known.unnamed = known.hasList = 0;
        if (!named_[unit]) {
            known.hasResult = 0;
            known.findings = {};
            continue;
        }
        known.hasList = 1;
        known.named = static_cast<std::uint32_t>(named_[unit]->size());
        for (const std::uint32_t file : *named_[unit]) {
            const std::optional<std::uint32_t> version = seen.Take(file);
            newLists.push_back(version ? *version : files_.UnseenVersion(file));
        }
        known.unnamed = seen.AppendRest(newLists);
    }
    lists.swap(newLists);
}

} // namespace Orvanta
