#include "history/FileVersions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <utility>

namespace Orvanta {

FileVersions::FileVersions(std::string folder) : folder_(std::move(folder)) {}

void FileVersions::Adopt(PathTable paths, std::vector<FileVersion> versions) {
    const Lock lock(mutex_);
    paths_ = std::move(paths);
    versions_ = std::move(versions);
    AddFiles(lock);
    nextVersion_.resize(versions_.size());
    for (std::size_t place = 0; place < versions_.size(); ++place) {
        File& file = FileAt(versions_[place].file, lock);
        // The versions of a file are a list through the table: most have one, and a list for each would be an
        // allocation.
        nextVersion_[place] = std::exchange(file.firstVersion, static_cast<VersionNumber>(place));
    }
}

FileNumber FileVersions::NumberOf(std::string_view reported, const std::string& directory) {
    const bool isWhole = reported.empty() || IsAbsolutePath(reported);
    // Joined before the lock is taken: every worker comes here for every file.
    const std::string joined = isWhole ? std::string() : JoinPath(directory, reported);
    const Lock lock(mutex_);
    const FileNumber number = isWhole ? paths_.Add(reported, 0) : paths_.Add(joined, joined.size() - reported.size());
    AddFiles(lock);
    return number;
}

void FileVersions::LookAt(FileNumber file) {
    Looked(file);
}

FileVersions::File& FileVersions::Looked(FileNumber number) {
    File* file = nullptr;
    {
        const Lock lock(mutex_);
        file = &FileAt(number, lock);
    }
    // Without the lock, so that others go on while the disk is asked; the file stays where it is in its deque.
    std::call_once(file->once, [this, number, file] { Look(number, *file); });
    return *file;
}

void FileVersions::Look(FileNumber number, File& file) {
    // Taken before the look: what happens in between counts as later.
    file.looked = std::chrono::steady_clock::now();
    std::string path;
    {
        const Lock lock(mutex_);
        path = paths_.Path(number);
    }
    file.stamp = StampOf(path);
    {
        const Lock lock(mutex_);
        FindCurrent(file, lock);
        // Known by its stamp, as nearly all are, or not there: nothing is read.
        if (file.current != None || !file.stamp) {
            return;
        }
    }
    ReadContent(file, path);
    // By the moment of the look: what is younger than that could still change within the same tick.
    const bool isProven = file.isKnown && IsProven(*file.stamp, file.looked);
    const Lock lock(mutex_);
    for (VersionNumber version = file.firstVersion; file.isKnown && version != None; version = Next(version, lock)) {
        FileVersion& known = At(version, lock);
        // The same content under a new stamp, such as that of a checkout: the version takes the new stamp over.
        if ((known.sight == Sight::Young || known.sight == Sight::Proven) && known.content == file.content &&
            known.stamp.size == file.stamp->size) {
            const Sight sight = isProven ? Sight::Proven : Sight::Young;
            hasLearned_ = hasLearned_ || known.stamp != *file.stamp || known.sight != sight;
            known.stamp = *file.stamp;
            known.sight = sight;
            file.current = version;
        }
    }
}

// Reads the file between two looks that agree: otherwise the content could be that of another stamp, and would be taken
// for it for ever. A file that never holds still stays unknown.
void FileVersions::ReadContent(File& file, const std::string& path) {
    constexpr int MostAttempts = 3;
    for (int attempt = 0; attempt < MostAttempts && file.stamp; ++attempt) {
        const std::optional<ContentFingerprint> content = FingerprintOfFile(path);
        const std::optional<FileStamp> after = StampOf(path);
        if (content && after == file.stamp && content->size == after->size) {
            file.content = content->bytes;
            file.isKnown = true;
            return;
        }
        file.looked = std::chrono::steady_clock::now();
        file.stamp = StampOf(path);
    }
}

// The version that the stamp alone tells.
void FileVersions::FindCurrent(File& file, const Lock& lock) {
    if (!file.stamp) {
        file.current = FindVersion(file, Sight::NotThere, lock);
        return;
    }
    for (VersionNumber version = file.firstVersion; version != None; version = Next(version, lock)) {
        if (At(version, lock).sight == Sight::Proven && At(version, lock).stamp == *file.stamp) {
            file.current = version;
        }
    }
}

bool FileVersions::IsProven(const FileStamp& stamp, Moment looked) {
    ReadClock();
    return clock_ && clock_->IsOlder(stamp, looked);
}

void FileVersions::ReadClock() {
    std::call_once(clockOnce_, [this] {
        try {
            MakeFolders(folder_);
            clock_.emplace(folder_);
        } catch (const ZelmException&) {
            clock_.reset(); // nothing counts as old then: files are read once more, units run once more
        }
    });
}

FileVersions::File& FileVersions::FileAt(FileNumber number, const Lock&) {
    return files_[PlaceOf(number)];
}

FileVersion& FileVersions::At(VersionNumber version, const Lock&) {
    return versions_[PlaceOf(version)];
}

VersionNumber FileVersions::Next(VersionNumber version, const Lock&) const {
    return nextVersion_[PlaceOf(version)];
}

VersionNumber FileVersions::FindVersion(const File& file, Sight sight, const Lock& lock) const {
    VersionNumber version = file.firstVersion;
    while (version != None && versions_[PlaceOf(version)].sight != sight) {
        version = Next(version, lock);
    }
    return version;
}

VersionNumber FileVersions::AddVersion(File& file, const FileVersion& version, const Lock&) {
    const auto number = static_cast<VersionNumber>(versions_.size());
    versions_.push_back(version);
    nextVersion_.push_back(std::exchange(file.firstVersion, number));
    return number;
}

VersionNumber FileVersions::FindOrAddVersion(FileNumber number, Sight sight, const Lock& lock) {
    File& file = FileAt(number, lock);
    const VersionNumber found = FindVersion(file, sight, lock);
    return found != None ? found : AddVersion(file, {number, sight, {}, {}}, lock);
}

void FileVersions::AddFiles(const Lock&) {
    while (files_.size() < paths_.Size()) {
        files_.emplace_back();
    }
}

VersionNumber FileVersions::UnseenVersion(FileNumber file) {
    const Lock lock(mutex_);
    return FindOrAddVersion(file, Sight::Unseen, lock);
}

// Whether what was found at the file is what a unit saw that was begun at `begin`. That is so when it was looked at
// before (whoever changes it while the unit runs is found out by DoubtChanged), or when it is older than that
// beginning, by the clock that stamped it.
bool FileVersions::IsTold(const File& file, Moment begin, const Lock&) const {
    if (file.isDoubted) {
        return false;
    }
    const bool isEarly = file.looked <= begin;
    if (!file.stamp) {
        return isEarly; // it may have been there later, for a while of which nobody can tell
    }
    return (file.current != None || file.isKnown) && (isEarly || (clock_ && clock_->IsOlder(*file.stamp, begin)));
}

VersionNumber FileVersions::VersionSeenBy(FileNumber number, Moment begin, WhenAbsent whenAbsent) {
    File& file = Looked(number);
    ReadClock();
    const Lock lock(mutex_);
    // From now on DoubtChanged looks after it.
    file.isGivenOut = true;
    if (!IsTold(file, begin, lock) || (!file.stamp && whenAbsent == WhenAbsent::Doubt)) {
        return FindOrAddVersion(number, Sight::Unseen, lock);
    }
    if (!file.stamp) {
        // Absence is a version as well: the unit is made anew when a file turns up there.
        file.current = FindOrAddVersion(number, Sight::NotThere, lock);
    } else if (file.current == None) {
        const bool isProven = clock_ && clock_->IsOlder(*file.stamp, file.looked);
        file.current =
            AddVersion(file, {number, isProven ? Sight::Proven : Sight::Young, *file.stamp, file.content}, lock);
    }
    return file.current;
}

bool FileVersions::IsTooNewFor(FileNumber number, Moment begin) {
    const File& file = Looked(number);
    ReadClock();
    const Lock lock(mutex_);
    return file.stamp && !file.isDoubted && !IsTold(file, begin, lock);
}

bool FileVersions::IsCurrent(VersionNumber version) {
    const File& file = Looked(FileOf(version));
    const Lock lock(mutex_);
    // What a unit may have seen in any form is never what is there now.
    return At(version, lock).sight != Sight::Unseen && file.current == version;
}

FileNumber FileVersions::FileOf(VersionNumber version) const {
    const Lock lock(mutex_);
    return versions_[PlaceOf(version)].file;
}

std::vector<FileNumber> FileVersions::Files() const {
    const Lock lock(mutex_);
    std::vector<FileNumber> files;
    files.reserve(versions_.size());
    for (const FileVersion& version : versions_) {
        files.push_back(version.file);
    }
    return files;
}

std::optional<FileStamp> FileVersions::StampOfFile(FileNumber file) {
    return Looked(file).stamp;
}

bool FileVersions::IsGone(FileNumber file) {
    if (StampOfFile(file)) {
        return false;
    }
    std::string path;
    {
        const Lock lock(mutex_);
        path = paths_.Path(file);
    }
    // Asked once more: no stamp can also mean that a folder stands there, or that it can't be told.
    return Orvanta::LookAt(path).kind == PathKind::Nothing;
}

// Between the look at a file and the end of a unit, somebody may have changed it, and changed it back. What is the same
// now as it was then was the same in between, unless its stamp proves nothing.
void FileVersions::DoubtChanged() {
    const Lock lock(mutex_); // nothing may be given out between this look and what is saved after it
    for (std::size_t place = 0; place < files_.size(); ++place) {
        File& file = files_[place];
        const auto number = static_cast<FileNumber>(place);
        if (!file.isGivenOut || file.isDoubted || !HasChangedSince(file, std::string(paths_.Path(number)), lock)) {
            continue;
        }
        file.isDoubted = true;
        // The version itself is taken back, and with it the lists of all units that name it already.
        const VersionNumber doubted = file.stamp ? file.current : FindVersion(file, Sight::NotThere, lock);
        if (doubted != None) {
            At(doubted, lock) = {number, Sight::Unseen, {}, {}};
            hasLearned_ = true;
        }
    }
}

// Whether the file is not as it was when it was looked at.
bool FileVersions::HasChangedSince(const File& file, const std::string& path, const Lock& lock) {
    if (StampOf(path) != file.stamp) {
        return true;
    }
    // A stamp that proves nothing leaves the content to be compared.
    if (file.current == None || At(file.current, lock).sight != Sight::Young) {
        return false;
    }
    const std::optional<ContentFingerprint> content = FingerprintOfFile(path);
    return !content || content->bytes != At(file.current, lock).content;
}

bool FileVersions::HasLearned() const {
    const Lock lock(mutex_);
    return hasLearned_;
}

FileVersions::Held FileVersions::HoldToSave() {
    std::unique_lock lock(mutex_);
    hasLearned_ = false;
    return {std::move(lock), paths_, versions_};
}

std::string FileVersions::PathOf(FileNumber file) const {
    const Lock lock(mutex_);
    return std::string(paths_.Path(file));
}

std::vector<std::string> FileVersions::Paths() const {
    const Lock lock(mutex_);
    std::vector<std::string> paths;
    paths.reserve(paths_.Size());
    for (std::size_t place = 0; place < paths_.Size(); ++place) {
        paths.emplace_back(paths_.Path(static_cast<FileNumber>(place)));
    }
    return paths;
}

} // namespace Orvanta
