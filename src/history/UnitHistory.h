#pragma once

#include "buildinput/CompileCommand.h"
#include "history/HistoryFolder.h"
#include "history/UnitIdentity.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What earlier runs have learned of the units of a build. It answers one question, "would this unit end as it did last
// time?", and a needless run is the worst that a doubt may lead to.
//
// A unit's result stands as long as its inputs are the same (command line, settings, variables: UnitIdentities.h), and
// each file on its list is the version that it saw: the files that the core has listed, those that a person has added,
// the programs that make the result, and the files that flags name.
//
// The files, all in the folder ".Orvanta":
//
//     depend_info.json    for people and other programs: which files each unit is made of. What stands here counts.
//     unit_history.bin    for us: the same lists, which version of each file the unit saw, where its findings are.
//     findings-N          the findings, in the core's own words; it only grows, until most of it is of no use.
//
// What must agree with what:
//
//   - The binary file names the depend_info.json that it belongs to by its content, and the one before it: it is
//     replaced first. A kill between the two costs nothing, and any third content was written by another hand: then the
//     lists are read from there, and files that the binary file does not know of the unit were added by that hand.
//   - A range of findings is checked by its fingerprint before it is used, and what a kept range tells of is never
//     written over. So the binary file on disk, an old one even, is always right about the findings file.
//   - What cannot be read, for whatever reason, is not known; what cannot be written is told. Neither ends a run.
//
// Why this form: most runs find nothing changed, and must then cost less than a build tool that does nothing. The JSON
// of a large build has hundreds of megabytes; to parse it takes seconds, to take its fingerprint a tenth of one. The
// binary file is read as it stands in memory. Times of a run are not compared with times of files: clocks are coarse
// and are set back, so a file is known by what the system says of it, and by its content where that leaves a doubt.
//
// Rejected: a file that grows with every unit that ends, as build tools have (it is read whole in any case, and written
// again as a whole here once in a while, which costs one part in twenty of the time); a database (a dependency for
// three tables); one file for each unit (a hundred thousand files).
//
// The classes: HistoryRecord is what is known of the units, FileVersions what is known of files, both in memory.
// HistoryFolder and FindingsStore are the files on disk. HistoryState holds all four and the locks, and saves what a
// HistoryExtract says is worth it; UnitHistory is what a run sees of it, UnitWatch what the run of a unit does.

namespace Orvanta {

class UnitWatch;

/// What stands between a unit and its last result.
struct UnitStanding {
    enum class Kind {
        Unchanged,     ///< the result stands
        LeftOut,       ///< it was left out, and would be again
        Unknown,       ///< no run knows it
        InputsChanged, ///< its command, settings, variables, compiler or core are others
        FileChanged,   ///< `path` is another version, or can't be told to be the same
        NoResult,      ///< its last run has failed, or was no analysis
        FindingsLost,  ///< what it found can't be read any more
    };

    Kind kind = Kind::Unknown;
    std::string path = {}; ///< of the first file that has changed
};

/// The history of the units of one run; what it keeps of other units stays until their source is gone. A file is looked
/// up on disk once per run, however many units include it.
///
/// First `Read`, then the questions, by one thread; then the functions marked so, by any number of threads.
class UnitHistory {
public:
    enum class ReadResult { Read, Missing, Unreadable };

    /// `folder` need not exist before the first `Save`. `commands` and `identities` are those of the same units, by
    /// position; the commands outlive the history. `tell` takes a line for each file that can't be used.
    UnitHistory(std::string folder, std::span<const CompileCommand> commands, std::vector<UnitIdentity> identities,
                TellUser tell = {});
    ~UnitHistory();
    UnitHistory(const UnitHistory&) = delete;
    UnitHistory& operator=(const UnitHistory&) = delete;

    /// Reads what is kept. When `depend_info.json` is missing or can't be read, nothing is known.
    [[nodiscard]] ReadResult Read();

    /// Why the last `Read` found the file unreadable; empty when it did not.
    [[nodiscard]] const std::string& Fault() const;

    /// Why the unit would run again, or that it would not.
    [[nodiscard]] UnitStanding StandingOf(std::size_t unit);

    /// The sources of all units known, those of other runs too, that are made of the file at `path`, which is absolute
    /// and normalised; in the order of the text, each once.
    [[nodiscard]] std::vector<std::string> SourcesMadeOf(const std::string& path) const;

    /// Whether the files that the unit is made of are known, and none of them, nor the unit's inputs, has changed
    /// since.
    [[nodiscard]] bool KnowsDependencies(std::size_t unit);

    /// Whether the last run of the unit was a success and would end in the same way now: no file that it saw has
    /// another content, its inputs are the same, and its findings can be read.
    [[nodiscard]] bool IsUnchanged(std::size_t unit);

    /// By unit: whether one of the `paths`, which are absolute, is its source or among its dependencies. A file is
    /// found by whatever path leads to it. One that is not there any more is found where a unit was made of it when
    /// this run began. `found`, as long as `paths`, is set for each that is one of some unit.
    [[nodiscard]] std::vector<bool> UnitsMadeOf(std::span<const std::string> paths, std::vector<bool>& found) const;

    /// What the last successful run of the unit found, as the core wrote it; empty for nothing.
    /// Any thread may call it.
    /// \throws FileException when it can't be read
    [[nodiscard]] std::string KeptFindings(std::size_t unit) const;

    /// Looks at the files that the unit was made of last, before it is preprocessed, and follows this run of it.
    /// `inputFiles` are those that its command names beside sources and headers (FilesNamedByFlags); relative ones are
    /// of the unit's folder, and some may not exist. Any thread may call it.
    [[nodiscard]] UnitWatch Watch(std::size_t unit, std::span<const std::string> inputFiles = {});

    /// Records that the unit is left out by rules that its inputs hold: it is unchanged until they change.
    /// Any thread may call it.
    void RecordLeftOut(std::size_t unit);

    /// Whether the unit was left out so, and nothing has changed.
    [[nodiscard]] bool IsLeftOut(std::size_t unit);

    /// Forgets the result of the unit, which then runs again next time; its dependencies stay known.
    /// Any thread may call it.
    void ForgetResult(std::size_t unit);

    /// Writes what a kill would lose. `UnitWatch::Keep` does so by itself now and then, and is silent when it can't.
    /// Any thread may call it. Returns whether all is written; the user is told why not.
    bool SaveProgress();

    /// Writes all of it, each file beside the old one and renamed over it; `depend_info.json` only when a list in it
    /// has changed. Removes what killed runs have left in the folder. Returns whether all is written; if not, what was
    /// there before is there still, and the user is told why.
    bool Save();

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
    /// The moved one forgets nothing when it goes.
    UnitWatch(UnitWatch&& other) noexcept;
    UnitWatch& operator=(UnitWatch&&) = delete;
    ~UnitWatch();

    /// The files that the core has listed of the unit before, when nothing that decides the list has changed since: it
    /// need not list them again.
    [[nodiscard]] std::optional<std::vector<std::string>> KnownDependencies() const;

    /// Whether it can be told what the unit saw of these files. If not, because one that was not known before is too
    /// new, the watch has begun anew: the unit is to be preprocessed once more, after which it can be told.
    [[nodiscard]] bool Covers(std::span<const std::string> dependencies);

    /// The last call. Keeps what a successful listing of the unit gave, and with `findings` a successful run. Files
    /// are recorded as they were before the unit was preprocessed; where that can't be told (a file not known before
    /// has changed since the run began, or is not there), the unit counts as changed next time. Without `findings`,
    /// those of an unchanged unit stay. Findings that can't be written are not kept; the user is told.
    void Keep(std::span<const std::string> dependencies, std::optional<std::string_view> findings = std::nullopt);

private:
    friend class UnitHistory;
    /// Looks at the files, by `Begin`.
    UnitWatch(UnitHistory& history, std::size_t unit, std::span<const std::string> inputFiles);
    /// Looks at what the unit is known to be made of, and then sets its beginning.
    void Begin();

    UnitHistory* history_; // null: nothing is left to forget
    std::size_t unit_;
    std::vector<std::string> inputFiles_;
    std::chrono::steady_clock::time_point begin_;
};

} // namespace Orvanta
