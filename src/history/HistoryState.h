#pragma once

#include "buildinput/CompileCommand.h"
#include "history/FileVersions.h"
#include "history/FindingsStore.h"
#include "history/HistoryFile.h"
#include "history/UnitHistory.h"
#include "platform/Fingerprint.h"

#include <chrono>
#include <istream>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// All that a history holds, and its way from the disk and back.
struct HistoryState {
    using Clock = std::chrono::steady_clock;
    using Lock = std::lock_guard<std::mutex>;

    enum class Extent {
        Progress, ///< what a kill would lose
        All,
    };

    /// The parameters are those of UnitHistory.
    HistoryState(std::string folderGiven, std::span<const CompileCommand> commandsGiven,
                 std::vector<UnitIdentity> identitiesGiven);

    /// Fills an empty state; one whose file turns out to be unreadable is of no use afterwards.
    /// \throws ZelmException when a file that is there can't be opened
    [[nodiscard]] UnitHistory::ReadResult Read();

    /// Any thread may call it. \throws ZelmException: the path, then the system's reason
    void Save(Extent extent);

    /// Saves when enough has been learned for it: rarely enough to cost little, often enough for a kill to cost little.
    /// Any thread may call it.
    void SaveNowAndThen();

    const std::string folder;
    const std::span<const CompileCommand> commands;
    const std::vector<UnitIdentity> identities;
    std::string fault; // why the file is unreadable
    FileVersions files;

    std::mutex mutex;
    std::vector<KnownUnit> units;            // by position in the run; guarded by mutex, as all that follows
    std::vector<std::uint32_t> lists;        // numbers of versions
    std::unique_ptr<FindingsStore> findings; // not null
    bool isInfoBehind = false;               // `depend_info.json` lacks what is known
    bool isDirty = false;                    // there is something to save

private:
    void ReadBinary(std::optional<HistoryData>& history) const;
    void Adopt(HistoryData history);
    void ForgetUnreadableFindings(const HistoryData& history);
    void ReadLists(std::istream& input);
    [[nodiscard]] HistoryData Snapshot(std::vector<std::size_t>& positions, const Lock& lock);
    void Write(HistoryData& history, const std::vector<std::size_t>& positions, bool writesInfo);
    void WriteDependencyInfo(HistoryData& history, const std::vector<std::size_t>& positions);

    std::mutex saving_;                            // one at a time; taken before `mutex`
    std::optional<ContentFingerprint> infoOnDisk_; // of `depend_info.json`; absent: nothing of use. Guarded by saving_
    Clock::time_point lastSaved_ = Clock::now();   // guarded by saving_
    Clock::duration lastDuration_{};               // guarded by saving_
};

/// The unit has no result any more.
void ForgetFindings(KnownUnit& unit);

} // namespace Orvanta
