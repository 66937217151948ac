#pragma once

#include "buildinput/CompileCommand.h"
#include "platform/Fingerprint.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

/// A unit as its history knows it.
struct UnitIdentity {
    std::string id;        ///< unlike that of any other unit of the run
    Fingerprint arguments; ///< of its arguments: how dependency information without "id" is matched
    Fingerprint inputs;    ///< of all that decides its result beside its files: command, settings, compiler, core
};

class UnitWatch;

/// What earlier runs have learned of the units of a build: the files that each is made of (`depend_info.json`), what
/// its last successful run saw of them, and what it found. Lives in one folder, and is made for the units of one run:
/// what is kept of units that are not among them is dropped by the next `Save`. A file is looked up on disk once per
/// run, however many units include it.
///
/// First `Read`, then the questions, by one thread; then the functions marked so, by any number of threads.
class UnitHistory {
public:
    enum class ReadResult { Read, Missing, Unreadable };

    /// `folder` need not exist before the first `Save`. `commands` and `identities` are those of the same units, by
    /// position; the commands outlive the history.
    UnitHistory(std::string folder, std::span<const CompileCommand> commands, std::vector<UnitIdentity> identities);
    ~UnitHistory();
    UnitHistory(const UnitHistory&) = delete;
    UnitHistory& operator=(const UnitHistory&) = delete;

    /// Reads what is kept. When `depend_info.json` is missing or can't be read, nothing is known.
    /// \throws ZelmException when a file that is there can't be opened
    [[nodiscard]] ReadResult Read();

    /// Why the last `Read` found the file unreadable; empty when it did not.
    [[nodiscard]] const std::string& Fault() const;

    /// Whether the files that the unit is made of are known, and none of them, nor the unit's inputs, has changed
    /// since.
    [[nodiscard]] bool KnowsDependencies(std::size_t unit);

    /// Whether the last run of the unit was a success and would end in the same way now: no file that it saw has
    /// another content, and its inputs are the same.
    [[nodiscard]] bool IsUnchanged(std::size_t unit);

    /// By unit: whether one of the `paths`, which are absolute and normalised, is among its dependencies. `found`, as
    /// long as `paths`, is set for each that is one of some unit.
    [[nodiscard]] std::vector<bool> UnitsMadeOf(std::span<const std::string> paths, std::vector<bool>& found) const;

    /// What the last successful run of the unit found, as the core wrote it; empty for nothing.
    /// Any thread may call it.
    /// \throws ZelmException when it can't be read
    [[nodiscard]] std::string KeptFindings(std::size_t unit) const;

    /// Looks at the files that the unit was made of last, before it is preprocessed, and follows this run of it.
    /// Any thread may call it.
    [[nodiscard]] UnitWatch Watch(std::size_t unit);

    /// Records that the unit is left out by rules that its inputs hold: it is unchanged until they change.
    /// Any thread may call it.
    void RecordLeftOut(std::size_t unit);

    /// Whether the unit was left out so, and nothing has changed.
    [[nodiscard]] bool IsLeftOut(std::size_t unit);

    /// Forgets the result of the unit, which then runs again next time; its dependencies stay known.
    /// Any thread may call it.
    void ForgetResult(std::size_t unit);

    /// Writes what a kill would lose. `UnitWatch::Keep` does so by itself now and then, and is silent when it can't.
    /// Any thread may call it.
    /// \throws ZelmException: the path, then the system's reason
    void SaveProgress();

    /// Writes all of it, each file beside the old one and renamed over it; `depend_info.json` only when a list in it
    /// has changed. Removes what killed runs have left in the folder.
    /// \throws ZelmException: the path, then the system's reason; what was there before is there still
    void Save();

private:
    friend class UnitWatch;
    struct State;
    std::unique_ptr<State> state_;
};

/// One run of a unit, from before it is preprocessed until it is known what it saw and found. One that is dropped
/// without `Keep`, for whatever reason, has forgotten the unit's result, so that the unit runs again next time; its
/// dependencies stay known. The history outlives it.
class UnitWatch {
public:
    UnitWatch(UnitWatch&& other) noexcept
        : history_(std::exchange(other.history_, nullptr)), unit_(other.unit_), begin_(other.begin_) {}

    UnitWatch& operator=(UnitWatch&&) = delete;
    ~UnitWatch();

    /// Whether it can be told what the unit saw of these files. If not, because one that was not known before is too
    /// new, the watch has begun anew: the unit is to be preprocessed once more, after which it can be told.
    [[nodiscard]] bool Covers(std::span<const std::string> dependencies);

    /// The last call. Keeps what a successful listing of the unit gave, and with `findings` a successful run. Files
    /// are recorded as they were before the unit was preprocessed; where that can't be told (a file not known before
    /// has changed since the run began), the unit counts as changed next time. Without `findings`, those of an
    /// unchanged unit stay.
    void Keep(std::span<const std::string> dependencies, std::optional<std::string_view> findings = std::nullopt);

private:
    friend class UnitHistory;
    UnitWatch(UnitHistory& history, std::size_t unit);
    void Begin();

    UnitHistory* history_; // null: nothing is left to forget
    std::size_t unit_;
    std::chrono::steady_clock::time_point begin_;
};

} // namespace Orvanta
