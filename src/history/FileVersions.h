#pragma once

#include "history/HistoryFile.h"
#include "history/Numbers.h"
#include "history/VersionTable.h"
#include "platform/FileStamp.h"
#include "platform/FileSystemClock.h"
#include "platform/Fingerprint.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The clock of the file system that holds a folder, read when it is first needed. Any thread may call any function.
class LateClock {
public:
    /// The folder is made for that if need be.
    explicit LateClock(std::string folder) : folder_(std::move(folder)) {}

    /// Reads the clock, unless that has been done.
    void Read();

    /// FileSystemClock::IsOlder. False where the file system gives no clock: nothing counts as old then, so that files
    /// are read once more and units run once more.
    [[nodiscard]] bool IsOlder(const FileStamp& stamp, std::chrono::steady_clock::time_point moment);

private:
    std::string folder_;
    std::once_flag once_;
    std::optional<FileSystemClock> clock_; // absent where there is none
};

/// What a look at a file has told.
struct FileLook {
    std::chrono::steady_clock::time_point moment; ///< before the look: what happens in between counts as later
    StampAnswer file;
    Fingerprint content; ///< when it was read
    bool isRead = false; ///< whether that was possible
};

/// The files that units are made of, in all versions that some unit saw. Each file is looked up on disk once in a run,
/// and read only where its stamp does not tell whether it is a known version.
///
/// A list of a unit holds numbers of versions and not a time of the whole list, because that is what makes an unchanged
/// build cheap: a header of ten thousand units is one version, asked for once. The time of a run decides nothing:
/// clocks of file systems are coarse, are not this machine's, and are set back.
///
/// Any thread may call any function but `Adopt`.
class FileVersions {
public:
    using Moment = std::chrono::steady_clock::time_point;

    /// What it means that a file is not there.
    enum class WhenAbsent {
        Doubt, ///< the unit was made of it: it can't be told how
        Seen,  ///< the compiler looked there, and then elsewhere
    };

    /// `folder` is where the clock of the file system is read, and made for that if need be.
    explicit FileVersions(std::string folder);

    /// Takes over what an earlier run knew. To be called before any other function.
    void Adopt(PathTable paths, std::vector<FileVersion> versions);

    /// Reads the clock of the file system. To be called before a unit begins, so that what happens to this machine's
    /// clock meanwhile, as when it sleeps, makes no new file look old.
    void ReadClock() { clock_.Read(); }

    /// The number of the file that a core has reported for a unit which runs in `directory`.
    [[nodiscard]] FileNumber NumberOf(std::string_view reported, const std::string& directory);

    /// Looks at a file, unless that has been done. Waits for another thread that is doing it.
    void LookAt(FileNumber file);

    /// The version of a file of which it is not known how a unit saw it.
    [[nodiscard]] VersionNumber UnseenVersion(FileNumber file);

    /// The version that a unit saw which was begun at `begin` and has ended: UnseenVersion where that can't be told.
    [[nodiscard]] VersionNumber VersionSeenBy(FileNumber number, Moment begin, WhenAbsent whenAbsent);

    /// Whether a unit that is run once more would let it be told better which version of the file such units see.
    [[nodiscard]] bool IsTooNewFor(FileNumber number, Moment begin);

    /// Whether the file has this version now.
    [[nodiscard]] bool IsCurrent(VersionNumber version);

    /// The file that it is a version of.
    [[nodiscard]] FileNumber FileOf(VersionNumber version) const;

    /// Looks at the file, as LookAt does; absent when there is none.
    [[nodiscard]] std::optional<FileStamp> StampOfFile(FileNumber file);

    /// Looks once more at the files whose versions VersionSeenBy has given out: where one has changed since, units may
    /// have seen it one way or the other, and what was given out becomes a version that is not known.
    void DoubtChanged();

    /// Whether more is known of a version than was adopted: worth saving.
    [[nodiscard]] bool HasLearned() const;

    /// The tables, which nobody changes as long as it lives.
    struct Held {
        std::unique_lock<std::mutex> lock;
        const VersionTable& table;
    };

    /// Gives the tables out to be saved: what was learned so far counts as saved.
    [[nodiscard]] Held HoldToSave();

    /// The path of the file, absolute, as it is looked up on disk.
    [[nodiscard]] std::string PathOf(FileNumber file) const;

private:
    /// What is known of a file in this run.
    struct File {
        std::once_flag once;
        FileLook look;                              // its content only when it is no known version
        VersionNumber current = VersionTable::None; // the version that it is, guarded by mutex_, as all that follows
        bool isGivenOut = false;
        bool isDoubted = false;
    };

    using Lock = std::lock_guard<std::mutex>;

    /// The file, looked at by this thread or another. What the look has set may then be read without the lock.
    File& Looked(FileNumber number);
    /// Looks at the file and reads it if need be. Only by way of `Looked`, which calls it once.
    void Look(FileNumber number, File& file);
    /// Sets `current` where a known version can be told without reading the file.
    void FindCurrent(FileNumber number, File& file, const Lock& lock);
    /// May read the file, under the lock.
    [[nodiscard]] bool HasChangedSince(const File& file, const std::string& path, const Lock& lock);
    /// Whether it is known what a unit saw that was begun at `begin`.
    [[nodiscard]] bool IsTold(const File& file, Moment begin, const Lock& lock);

    LateClock clock_;

    mutable std::mutex mutex_;
    VersionTable table_;     // guarded by mutex_, as all that follows
    std::deque<File> files_; // by file; as far as one was asked for; its elements stay where they are
    bool hasLearned_ = false;
};

} // namespace Orvanta
