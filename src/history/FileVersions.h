#pragma once

#include "history/HistoryFile.h"
#include "history/Numbers.h"
#include "platform/FileStamp.h"
#include "platform/FileSystemClock.h"
#include "platform/Fingerprint.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

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

    /// Reads the clock of the file system, unless that has been done. To be called before a unit begins, so that what
    /// happens to this machine's clock meanwhile, as when it sleeps, makes no new file look old.
    void ReadClock();

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

    /// By version: the file that it is a version of.
    [[nodiscard]] std::vector<FileNumber> Files() const;

    /// Looks at the file, as LookAt does; absent when there is none.
    [[nodiscard]] std::optional<FileStamp> StampOfFile(FileNumber file);

    /// Whether the file is not there for certain.
    [[nodiscard]] bool IsGone(FileNumber file);

    /// Looks once more at the files whose versions VersionSeenBy has given out: where one has changed since, units may
    /// have seen it one way or the other, and what was given out becomes a version that is not known.
    void DoubtChanged();

    /// Whether more is known of a version than was adopted: worth saving.
    [[nodiscard]] bool HasLearned() const;

    /// The tables, which nobody changes as long as it lives.
    struct Held {
        std::unique_lock<std::mutex> lock;
        const PathTable& paths;
        std::span<const FileVersion> versions; ///< by number
    };

    /// Gives the tables out to be saved: what was learned so far counts as saved.
    [[nodiscard]] Held HoldToSave();

    /// The path of the file, absolute, as it is looked up on disk.
    [[nodiscard]] std::string PathOf(FileNumber file) const;

    /// By file: its path.
    [[nodiscard]] std::vector<std::string> Paths() const;

private:
    static constexpr VersionNumber None{0xFFFFFFFFU};

    /// What is known of a file in this run.
    struct File {
        std::once_flag once;
        Moment looked;                  // set by the look, as all up to `isKnown`
        std::optional<FileStamp> stamp; // absent: no file
        Fingerprint content;            // when it is no known version
        bool isKnown = false;           // whether the content could be read
        VersionNumber current = None;   // the version that it is, guarded by mutex_, as all that follows
        VersionNumber firstVersion = None;
        bool isGivenOut = false;
        bool isDoubted = false;
    };

    using Lock = std::lock_guard<std::mutex>;

    /// The file, looked at by this thread or another. What the look has set may then be read without the lock.
    File& Looked(FileNumber number);
    /// Looks at the file and reads it if need be. Only by way of `Looked`, which calls it once.
    void Look(FileNumber number, File& file);
    /// Sets the content and, where it had to be taken again, the stamp with its moment; leaves the file unknown when it
    /// does not hold still.
    void ReadContent(File& file, const std::string& path);
    /// Sets `current` where a known version can be told without reading the file.
    void FindCurrent(File& file, const Lock& lock);
    /// Whether any other content would have another stamp; false without a clock.
    [[nodiscard]] bool IsProven(const FileStamp& stamp, Moment looked);
    /// May read the file, under the lock.
    [[nodiscard]] bool HasChangedSince(const File& file, const std::string& path, const Lock& lock);
    /// Whether it is known what a unit saw that was begun at `begin`.
    [[nodiscard]] bool IsTold(const File& file, Moment begin, const Lock& lock) const;

    // Those with a `lock` want it to be held by the caller. What they return lasts beyond it only for a File.
    [[nodiscard]] File& FileAt(FileNumber number, const Lock& lock);
    /// Lasts until a version is added.
    [[nodiscard]] FileVersion& At(VersionNumber version, const Lock& lock);
    /// The next older version of the same file; `None` behind the last.
    [[nodiscard]] VersionNumber Next(VersionNumber version, const Lock& lock) const;
    /// The newest version of the file that was seen in this way, or `None`.
    [[nodiscard]] VersionNumber FindVersion(const File& file, Sight sight, const Lock& lock) const;
    /// Puts a version in front of the file's others.
    VersionNumber AddVersion(File& file, const FileVersion& version, const Lock& lock);
    /// For sights that say nothing of a content, of which one version for each file is enough.
    VersionNumber FindOrAddVersion(FileNumber number, Sight sight, const Lock& lock);
    /// Makes a File for each path that has none yet.
    void AddFiles(const Lock& lock);

    std::string folder_;
    std::once_flag clockOnce_;
    std::optional<FileSystemClock> clock_; // absent where the file system gives none

    mutable std::mutex mutex_;
    PathTable paths_;                        // guarded by mutex_, as all that follows
    std::vector<FileVersion> versions_;      //
    std::vector<VersionNumber> nextVersion_; // of the same file, by version
    std::deque<File> files_;                 // by file; its elements stay where they are
    bool hasLearned_ = false;
};

} // namespace Orvanta
