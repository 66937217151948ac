#pragma once

#include "buildinput/CompileCommand.h"
#include "history/FileVersions.h"
#include "history/FindingsStore.h"
#include "history/HistoryFolder.h"
#include "history/HistoryRecord.h"
#include "history/UnitHistory.h"
#include "history/UnitIdentity.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// All that a history holds during a run, with the locks, and its way from the disk and back. Inside UnitHistory only.
struct HistoryState {
    using Clock = std::chrono::steady_clock;
    using Lock = std::lock_guard<std::mutex>;
    using Loss = HistoryFolder::Loss;

    enum class Extent {
        Progress, ///< what a kill would lose
        All,
    };

    /// The parameters are those of UnitHistory.
    HistoryState(std::string folderPath, std::span<const CompileCommand> commandsGiven,
                 std::vector<UnitIdentity> identitiesGiven, TellUser tell);

    /// Fills an empty state.
    [[nodiscard]] UnitHistory::ReadResult Read();

    /// Returns whether all is written. Any thread may call it.
    bool Save(Extent extent);

    /// Saves when enough has been learned for it: rarely enough to cost little, often enough for a kill to cost little.
    /// Any thread may call it.
    void SaveNowAndThen();

    const std::span<const CompileCommand> commands;
    const std::vector<UnitIdentity> identities;
    HistoryFolder folder;
    std::string fault; // why `depend_info.json` is unreadable
    FileVersions files;

    std::mutex mutex;
    HistoryRecord record;                    // guarded by mutex once there are several threads, as all that follows
    std::unique_ptr<FindingsStore> findings; // not null

private:
    /// Takes over what the binary file knows.
    void Adopt(HistoryData history);
    /// Goes on with the findings file; units whose findings it does not reach any more lose their results.
    void AdoptFindings(std::uint64_t number, std::uint64_t end);
    /// Takes the lists from `depend_info.json`; leaves the record without knowledge when that can't be read.
    [[nodiscard]] UnitHistory::ReadResult ReadLists();
    /// Looks at the sources of the units that are not of this run. Takes the lock itself.
    void DropGoneUnits();
    /// Writes all; a worker that needs the lock waits.
    void Write(bool isLast, const Lock& lock);
    /// Adds an entry for each unit that has a list.
    void FillInfo(DependencyInfoWriter& writer, std::span<const std::size_t> units, const VersionTable& known) const;

    std::mutex saving_;                          // one at a time; taken before `mutex`
    Clock::time_point lastSaved_ = Clock::now(); // guarded by saving_
    Clock::duration lastDuration_{};             // guarded by saving_
};

} // namespace Orvanta
