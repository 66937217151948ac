#include "history/HistoryRecord.h"

#include "history/KnownUnits.h"

#include <algorithm>
#include <charconv>

namespace Orvanta {

HistoryRecord::HistoryRecord(std::span<const UnitIdentity> identities) : identities_(identities) {
    Adopt({}, {});
}

void HistoryRecord::Adopt(std::vector<KnownUnit> known, std::vector<VersionNumber> lists) {
    units_ = MatchUnits(identities_, std::move(known));
    lists_ = std::move(lists);
    for (std::size_t unit = 0; unit < RunSize(); ++unit) {
        KnownUnit& row = units_[unit];
        // The dependency information tells the arguments too.
        isInfoBehind = isInfoBehind || (row.hasList != 0 && row.arguments != identities_[unit].arguments);
        row.arguments = identities_[unit].arguments;
    }
    isDirty = isDirty || isInfoBehind;
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
    PutList(unit, list);
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

void HistoryRecord::PutList(std::size_t unit, const SeenList& list) {
    KnownUnit& row = units_[unit];
    row.hasList = 1;
    row.named = static_cast<std::uint32_t>(list.named);
    row.added = static_cast<std::uint32_t>(list.added);
    row.unnamed = static_cast<std::uint32_t>(list.versions.size() - list.named - list.added);
    row.sourcePlace = static_cast<std::uint32_t>(list.sourcePlace);
    row.listBegin = lists_.size();
    lists_.insert(lists_.end(), list.versions.begin(), list.versions.end());
}

void HistoryRecord::DropList(std::size_t unit) {
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

std::string JoinId(const std::string& id, std::uint32_t namesake) {
    return id + (namesake > 1 ? " (" + std::to_string(namesake) + ")" : "");
}

std::pair<std::string_view, std::uint32_t> SplitId(std::string_view id) {
    const std::size_t opening = id.rfind(" (");
    std::uint32_t namesake = 0;
    if (opening != std::string_view::npos && id.ends_with(')')) {
        const std::string_view digits = id.substr(opening + 2, id.size() - opening - 3);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), namesake);
        // A source may itself end in parentheses, as "a (copy)" does: only what JoinId writes is taken off.
        if (error == std::errc() && end == digits.data() + digits.size() && namesake > 1) {
            return {id.substr(0, opening), namesake};
        }
    }
    return {id, 1};
}

} // namespace Orvanta
