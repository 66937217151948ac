#pragma once

#include "history/HistoryFile.h"
#include "history/Numbers.h"
#include "history/UnitIdentity.h"
#include "platform/Fingerprint.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvanta {

/// The files that a unit was made of, as it saw them: what the core has listed, then what a person has added, then what
/// else decides the result.
struct SeenList {
    std::vector<VersionNumber> versions;
    std::size_t named = 0;
    std::size_t added = 0;
    std::size_t sourcePlace = 0; ///< which of the versions is that of the unit's source
};

/// What is known of units: the lists of their files, whether their last run was a success, where its findings are. It
/// touches no disk and takes no lock: whoever holds it does both.
///
/// The units of the run come first, in its order; behind them come the others that are known, so that a run of a part
/// of the build forgets nothing of the rest.
///
/// A unit is its folder and its source. Several units of one source (two compilers, two sets of flags) are numbered,
/// and known by their arguments, since which of them are in a run changes. Arguments are no part of what a unit is:
/// with every new flag, all would be known twice.
///
/// Lists are replaced by being put behind the others. So a run can still be asked what a unit was made of before.
class HistoryRecord {
public:
    /// Knows nothing but the units of a run.
    explicit HistoryRecord(std::span<const UnitIdentity> identities);

    /// Takes over what an earlier run knew; MatchUnits says of which unit.
    void Adopt(std::vector<KnownUnit> known, std::vector<VersionNumber> lists);

    /// How many units are known, those of the run included.
    [[nodiscard]] std::size_t Size() const noexcept { return units_.size(); }

    /// How many units the run has.
    [[nodiscard]] std::size_t RunSize() const noexcept { return identities_.size(); }

    [[nodiscard]] const KnownUnit& operator[](std::size_t unit) const { return units_[unit]; }

    /// The rows, for whoever moves the findings.
    [[nodiscard]] std::span<KnownUnit> Units() noexcept { return units_; }

    /// All three parts of the unit's list; lasts until a list is put in. So do the two that follow.
    [[nodiscard]] std::span<const VersionNumber> ListOf(std::size_t unit) const;

    /// The files that the dependency information names for the unit.
    [[nodiscard]] std::span<const VersionNumber> NamedOf(std::size_t unit) const;

    /// The same, as it was when this run began.
    [[nodiscard]] std::span<const VersionNumber> EarlierNamedOf(std::size_t unit) const;

    /// Whether the list is known and was made with the unit's inputs of now.
    [[nodiscard]] bool HasList(std::size_t unit) const;

    /// Whether the unit was left out with the inputs that it has now.
    [[nodiscard]] bool IsLeftOut(std::size_t unit) const;

    /// Takes what a listing of the unit gave. Its result stays when it is the same as before. `namesSameFiles` says
    /// whether the dependency information already tells of these files.
    void SetList(std::size_t unit, const SeenList& list, bool namesSameFiles);

    /// The last run of the unit was a success, with the list that it has.
    void SetResult(std::size_t unit, const FindingsRange& findings);

    /// The unit has no result any more; its list stays.
    void ForgetResult(std::size_t unit);

    /// The unit is left out by rules that its inputs hold, and has no result.
    void LeaveOut(std::size_t unit);

    /// Puts the list in the place of the one that the unit has, and leaves all else.
    void PutList(std::size_t unit, const SeenList& list);

    /// What was known of the unit's files and findings has no say any more.
    void DropList(std::size_t unit);

    /// Adds a unit that is not of this run; returns its place.
    std::size_t AddOther(const Fingerprint& source, std::uint32_t namesake);

    /// Drops the units that are not of this run and for which `isGone` holds.
    void DropOthers(const std::function<bool(std::size_t unit)>& isGone);

    /// Whether the dependency information on disk lacks something.
    bool isInfoBehind = false;

    /// Whether something has changed that is worth saving.
    bool isDirty = false;

private:
    std::span<const UnitIdentity> identities_;
    std::vector<KnownUnit> units_;
    std::vector<VersionNumber> lists_; // of all units; a list that is replaced stays where it is
    /// By unit: where the files named at the run's beginning stand in lists_, and how many, once there are others.
    std::unordered_map<std::size_t, std::pair<std::size_t, std::size_t>> replacedLists_;
};

/// The id of a unit in the dependency information, where it stands once: of UnitIdentity::id, and which of several
/// units with that it is.
[[nodiscard]] std::string JoinId(const std::string& id, std::uint32_t namesake);

/// The parts of such an id.
[[nodiscard]] std::pair<std::string_view, std::uint32_t> SplitId(std::string_view id);

} // namespace Orvanta
