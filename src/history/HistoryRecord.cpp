#include "history/HistoryRecord.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <unordered_map>

namespace Orvanta {

HistoryRecord::HistoryRecord(std::span<const UnitIdentity> identities) : identities_(identities) {
    Adopt({}, {});
}

void HistoryRecord::Adopt(std::vector<KnownUnit> known, std::vector<VersionNumber> lists) {
    units_.assign(RunSize(), {});
    lists_ = std::move(lists);
    FindNamesakes(known);
    NumberNewUnits();
    for (std::size_t unit = 0; unit < RunSize(); ++unit) {
        KnownUnit& row = units_[unit];
        // The dependency information tells the arguments too.
        isInfoBehind = isInfoBehind || (row.hasList != 0 && row.arguments != identities_[unit].arguments);
        row.arguments = identities_[unit].arguments;
    }
    isDirty = isDirty || isInfoBehind;
}

// Units are mostly asked for in their order, in which they were written.
void HistoryRecord::FindNamesakes(std::vector<KnownUnit>& known) {
    // Numbers of known units begin with 1.
    constexpr std::size_t Taken = 0; // of namesake
    std::unordered_multimap<std::uint64_t, std::size_t> places;
    const auto find = [&](std::size_t unit, bool hasSameArguments) {
        // Made when the order fails for the first time, and never in a build that has not changed.
        if (places.empty()) {
            for (std::size_t place = 0; place < known.size(); ++place) {
                places.emplace(known[place].source.low, place);
            }
        }
        std::size_t best = known.size();
        const auto [first, last] = places.equal_range(units_[unit].source.low);
        for (auto place = first; place != last; ++place) {
            const KnownUnit& row = known[place->second];
            if (row.namesake != Taken && row.source == units_[unit].source &&
                (!hasSameArguments || row.arguments == identities_[unit].arguments)) {
                // The first in the file: the order within the map says nothing.
                best = std::min(best, place->second);
            }
        }
        return best;
    };
    const auto take = [](KnownUnit& row) {
        const KnownUnit taken = row;
        row.namesake = Taken;
        return taken;
    };
    std::vector<std::size_t> missed;
    std::size_t next = 0;
    for (std::size_t unit = 0; unit < RunSize(); ++unit) {
        units_[unit].source = FingerprintOf(identities_[unit].id);
        const bool isNext = next < known.size() && known[next].namesake != Taken &&
                            known[next].source == units_[unit].source &&
                            known[next].arguments == identities_[unit].arguments;
        const std::size_t place = isNext ? next : known.empty() ? known.size() : find(unit, true);
        if (place == known.size()) {
            // In a second pass: those with equal arguments come first, so that none is taken away from its own unit.
            missed.push_back(unit);
            units_[unit].namesake = Taken;
            continue;
        }
        units_[unit] = take(known[place]);
        next = place + 1;
    }
    for (const std::size_t unit : missed) {
        if (const std::size_t place = known.empty() ? known.size() : find(unit, false); place != known.size()) {
            units_[unit] = take(known[place]);
        }
    }
    std::copy_if(known.begin(), known.end(), std::back_inserter(units_),
                 [](const KnownUnit& row) { return row.namesake != Taken; });
}

void HistoryRecord::NumberNewUnits() {
    const auto isNew = [](const KnownUnit& row) {
        return row.namesake == 0;
    };
    if (std::none_of(units_.begin(), units_.end(), isNew)) {
        return;
    }
    // Two sources with one hash share their numbers, which then have gaps: that does no harm.
    std::unordered_map<std::uint64_t, std::uint32_t> greatest;
    for (const KnownUnit& row : units_) {
        std::uint32_t& namesake = greatest[row.source.low];
        namesake = std::max(namesake, row.namesake);
    }
    for (KnownUnit& row : units_) {
        if (isNew(row)) {
            row.namesake = ++greatest[row.source.low];
        }
    }
}

std::span<const VersionNumber> HistoryRecord::ListOf(std::size_t unit) const {
    return std::span(lists_).subspan(units_[unit].listBegin, units_[unit].ListSize());
}

std::span<const VersionNumber> HistoryRecord::NamedOf(std::size_t unit) const {
    return ListOf(unit).first(std::size_t{units_[unit].named} + units_[unit].added);
}

std::span<const VersionNumber> HistoryRecord::EarlierNamedOf(std::size_t unit) const {
    const auto replaced = replacedLists_.find(unit);
    return replaced == replacedLists_.end()
               ? NamedOf(unit)
               : std::span(lists_).subspan(replaced->second.first, replaced->second.second);
}

std::string HistoryRecord::IdOf(std::size_t unit) const {
    const std::uint32_t namesake = units_[unit].namesake;
    return identities_[unit].id + (namesake > 1 ? " (" + std::to_string(namesake) + ")" : "");
}

bool HistoryRecord::HasList(std::size_t unit) const {
    return units_[unit].hasList != 0 && units_[unit].inputs == identities_[unit].inputs;
}

bool HistoryRecord::IsLeftOut(std::size_t unit) const {
    return units_[unit].leftOutWith != Fingerprint{} && units_[unit].leftOutWith == identities_[unit].inputs;
}

void HistoryRecord::SetList(std::size_t unit, const SeenList& list, bool namesSameFiles) {
    KnownUnit& row = units_[unit];
    const std::span<const VersionNumber> before = ListOf(unit);
    const bool isSame = HasList(unit) && row.named == list.named && row.added == list.added &&
                        std::equal(before.begin(), before.end(), list.versions.begin(), list.versions.end());
    row.inputs = identities_[unit].inputs;
    row.leftOutWith = {};
    if (isSame) {
        return;
    }
    isDirty = true;
    isInfoBehind = isInfoBehind || !namesSameFiles;
    // The first list that was replaced is that of the run's beginning, and stays.
    replacedLists_.try_emplace(unit, row.listBegin, std::size_t{row.named} + row.added);
    PutList(row, list);
    // What was found with other files is no result of these.
    ForgetResult(unit);
}

void HistoryRecord::SetResult(std::size_t unit, const FindingsRange& findings) {
    units_[unit].hasResult = 1;
    units_[unit].findings = findings;
    isDirty = true;
}

void HistoryRecord::ForgetResult(std::size_t unit) {
    KnownUnit& row = units_[unit];
    isDirty = isDirty || row.hasResult != 0 || row.leftOutWith != Fingerprint{};
    row.leftOutWith = {};
    row.hasResult = 0;
    row.findings = {};
}

void HistoryRecord::LeaveOut(std::size_t unit) {
    if (units_[unit].leftOutWith != identities_[unit].inputs) {
        ForgetResult(unit);
        units_[unit].leftOutWith = identities_[unit].inputs;
        isDirty = true;
    }
}

void HistoryRecord::PutList(KnownUnit& row, const SeenList& list) {
    row.hasList = 1;
    row.named = static_cast<std::uint32_t>(list.named);
    row.added = static_cast<std::uint32_t>(list.added);
    row.unnamed = static_cast<std::uint32_t>(list.versions.size() - list.named - list.added);
    row.sourcePlace = static_cast<std::uint32_t>(list.sourcePlace);
    row.listBegin = lists_.size();
    lists_.insert(lists_.end(), list.versions.begin(), list.versions.end());
}

void HistoryRecord::ReadList(std::size_t unit, const SeenList& list) {
    PutList(units_[unit], list);
}

void HistoryRecord::ReadNoList(std::size_t unit) {
    KnownUnit& row = units_[unit];
    row.listBegin = 0;
    row.named = row.added = row.unnamed = row.sourcePlace = 0;
    row.hasList = row.hasResult = 0;
    row.findings = {};
}

std::size_t HistoryRecord::AddOther(const Fingerprint& source, std::uint32_t namesake) {
    KnownUnit& row = units_.emplace_back();
    row.source = source;
    row.namesake = namesake;
    return units_.size() - 1;
}

void HistoryRecord::DropOthers(const std::function<bool(std::size_t unit)>& isGone) {
    std::size_t kept = RunSize();
    for (std::size_t unit = RunSize(); unit < Size(); ++unit) {
        if (!isGone(unit)) {
            // In place: the units of the run, which stand in front, keep their numbers.
            units_[kept++] = units_[unit];
        }
    }
    if (kept != Size()) {
        units_.resize(kept);
        isDirty = isInfoBehind = true;
    }
}

std::pair<std::string_view, std::uint32_t> SplitId(std::string_view id) {
    const std::size_t opening = id.rfind(" (");
    std::uint32_t namesake = 0;
    if (opening != std::string_view::npos && id.ends_with(')')) {
        const std::string_view digits = id.substr(opening + 2, id.size() - opening - 3);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), namesake);
        // A source may itself end in parentheses, as "a (copy)" does: only what IdOf writes is taken off.
        if (error == std::errc() && end == digits.data() + digits.size() && namesake > 1) {
            return {id.substr(0, opening), namesake};
        }
    }
    return {id, 1};
}

} // namespace Orvanta
