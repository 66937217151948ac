#pragma once

#include "platform/Files.h"
#include "platform/Fingerprint.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

// The journal of a run: what it has finished so far, for the run that goes on when it is interrupted or killed.
//
// It is no history. It lives as long as its run has not come to its end, it knows units by their place in the build,
// and it counts for the same build, settings, core and version only. A run pays one write for a unit: nothing is looked
// up, no file of the project is asked for anything. Whether a unit is still what it was is found out by the run that
// goes on, which has it preprocessed again: see `IsCurrent`.
//
// The file is a mark and records behind it, each with its size in front and a checksum behind. A kill may cut the last
// one short, and a power cut more: what is read ends in front of the first record that is not whole, and is cut off
// there. A later record of a unit goes before an earlier one.
//
// Rejected: to write the stamps of all files that a unit is made of, which costs a look at each of them in every run
// and still does not tell what a compiler answers today.

namespace Orvanta {

/// What decides the results of all units beside their files.
struct JournalInputs {
    Fingerprint build;    ///< the units and their compilers, in their order
    Fingerprint settings; ///< with the core and the program

    bool operator==(const JournalInputs&) const = default;
};

/// What is known of a finished unit.
struct FinishedUnit {
    Fingerprint text;            ///< of its preprocessed text
    bool importsModules = false; ///< of C++20
    std::int64_t begin = 0;      ///< when the run that finished it began, by the file system's clock
};

/// The journal of one run. Any thread may append.
class RunJournal {
public:
    enum class Start {
        Anew, ///< forgets what is there
        GoOn, ///< with what an interrupted run has left
    };

    /// Opens the journal at `path`, in a folder that is there.
    /// \throws FileException
    RunJournal(const std::string& path, const JournalInputs& inputs, Start start);

    /// Why there is nothing to go on with; empty when there is, or nobody wants to.
    [[nodiscard]] const std::string& WhyAnew() const noexcept { return whyAnew_; }

    /// What an earlier run has finished; absent for all else. For workers, which ask while others append.
    [[nodiscard]] std::optional<FinishedUnit> Find(std::size_t unit) const;

    /// What the core found in it, in the core's own lines.
    /// \throws FileException
    [[nodiscard]] std::string Findings(std::size_t unit) const;

    /// Writes down that a unit is finished. What can't be written is missing from it, and so is all that comes behind.
    void Append(std::size_t unit, const FinishedUnit& finished, std::string_view findings) noexcept;

    /// When this run began, by the file system's clock: what was written later has no earlier stamp.
    [[nodiscard]] std::int64_t Begin() const noexcept { return begin_; }

    /// Whether there is anything to go on with, now.
    [[nodiscard]] bool HoldsAny() const;

    /// The run has come to its end: there is nothing to go on with.
    void Remove() noexcept;

private:
    struct Place {
        FinishedUnit unit;
        std::uint64_t findingsBegin = 0;
        std::uint64_t findingsSize = 0;
    };

    // Reads what is there as far as it is whole, and is of these inputs; `end_` is behind it.
    void Read(const JournalInputs& inputs);
    void WriteRecord(std::string_view record);

    const std::string path_;
    std::optional<OutputFile> file_;       // guarded by mutex_ once workers run; absent after a fault
    std::map<std::size_t, Place> earlier_; // not changed once the journal is open
    std::uint64_t end_ = 0;                // guarded by mutex_
    bool hasNew_ = false;                  // guarded by mutex_
    std::int64_t begin_ = 0;
    std::string whyAnew_;
    mutable std::mutex mutex_;
};

} // namespace Orvanta
