#include "history/FileVersions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <utility>

namespace Orvanta {

namespace {

constexpr VersionNumber None = VersionTable::None;

// Reads the file between two looks that agree: otherwise the content could be that of another stamp, and would be taken
// for it for ever. A file that never holds still stays unknown.
void ReadContent(FileLook& look, const std::string& path) {
    constexpr int MostAttempts = 3;
    for (int attempt = 0; attempt < MostAttempts && look.file.stamp; ++attempt) {
        const std::optional<ContentFingerprint> content = FingerprintOfFile(path);
        const std::optional<FileStamp> after = StampOf(path);
        if (content && after == look.file.stamp && content->size == after->size) {
            look.content = content->bytes;
            look.isRead = true;
            return;
        }
        look.moment = std::chrono::steady_clock::now();
        look.file = AskForStamp(path);
    }
}

} // namespace

void LateClock::Read() {
    std::call_once(once_, [this] {
        try {
            MakeFolders(folder_);
            clock_.emplace(folder_);
        } catch (const ZelmException&) {
            clock_.reset();
        }
    });
}

bool LateClock::IsOlder(const FileStamp& stamp, std::chrono::steady_clock::time_point moment) {
    Read();
    return clock_ && clock_->IsOlder(stamp, moment);
}

FileVersions::FileVersions(std::string folder) : clock_(std::move(folder)) {}

void FileVersions::Adopt(PathTable paths, std::vector<FileVersion> versions) {
    const Lock lock(mutex_);
    table_ = VersionTable(std::move(paths), std::move(versions));
}

FileNumber FileVersions::NumberOf(std::string_view reported, const std::string& directory) {
    const bool isWhole = reported.empty() || IsAbsolutePath(reported);
    // Joined before the lock is taken: every worker comes here for every file.
    const std::string joined = isWhole ? std::string() : JoinPath(directory, reported);
    const Lock lock(mutex_);
    return isWhole ? table_.Add(reported, 0) : table_.Add(joined, joined.size() - reported.size());
}

void FileVersions::LookAt(FileNumber file) {
    Looked(file);
}

FileVersions::File& FileVersions::Looked(FileNumber number) {
    File* file = nullptr;
    {
        const Lock lock(mutex_);
        while (files_.size() <= PlaceOf(number)) {
            files_.emplace_back();
        }
        file = &files_[PlaceOf(number)];
    }
    // Without the lock, so that others go on while the disk is asked; the file stays where it is in its deque.
    std::call_once(file->once, [this, number, file] { Look(number, *file); });
    return *file;
}

void FileVersions::Look(FileNumber number, File& file) {
    // Taken before the look: what happens in between counts as later.
    file.look.moment = std::chrono::steady_clock::now();
    std::string path;
    {
        const Lock lock(mutex_);
        path = table_.Paths().Path(number);
    }
    file.look.file = AskForStamp(path);
    {
        const Lock lock(mutex_);
        FindCurrent(number, file, lock);
        // Known by its stamp, as nearly all are, or not there: nothing is read.
        if (file.current != None || !file.look.file.stamp) {
            return;
        }
    }
    ReadContent(file.look, path);
    // By the moment of the look: what is younger than that could still change within the same tick.
    const bool isProven = file.look.isRead && clock_.IsOlder(*file.look.file.stamp, file.look.moment);
    const Lock lock(mutex_);
    for (VersionNumber version = table_.First(number); file.look.isRead && version != None;
         version = table_.Next(version)) {
        FileVersion& known = table_[version];
        // The same content under a new stamp, such as that of a checkout: the version takes the new stamp over.
        if ((known.sight == Sight::Young || known.sight == Sight::Proven) && known.content == file.look.content &&
            known.stamp.size == file.look.file.stamp->size) {
            const Sight sight = isProven ? Sight::Proven : Sight::Young;
            hasLearned_ = hasLearned_ || known.stamp != *file.look.file.stamp || known.sight != sight;
            known.stamp = *file.look.file.stamp;
            known.sight = sight;
            file.current = version;
        }
    }
}

// The version that the stamp alone tells.
void FileVersions::FindCurrent(FileNumber number, File& file, const Lock&) {
    if (!file.look.file.stamp) {
        file.current = file.look.file.isTold ? table_.Find(number, Sight::NotThere) : None;
        return;
    }
    for (VersionNumber version = table_.First(number); version != None; version = table_.Next(version)) {
        if (table_[version].sight == Sight::Proven && table_[version].stamp == *file.look.file.stamp) {
            file.current = version;
        }
    }
}

VersionNumber FileVersions::UnseenVersion(FileNumber file) {
    const Lock lock(mutex_);
    return table_.FindOrAdd(file, Sight::Unseen);
}

// Whether what was found at the file is what a unit saw that was begun at `begin`. That is so when it was looked at
// before (whoever changes it while the unit runs is found out by DoubtChanged), or when it is older than that
// beginning, by the clock that stamped it.
bool FileVersions::IsTold(const File& file, Moment begin, const Lock&) {
    if (file.isDoubted) {
        return false;
    }
    const bool isEarly = file.look.moment <= begin;
    if (!file.look.file.stamp) {
        return isEarly && file.look.file.isTold; // it may have been there later, for a while of which nobody can tell
    }
    return (file.current != None || file.look.isRead) && (isEarly || clock_.IsOlder(*file.look.file.stamp, begin));
}

VersionNumber FileVersions::VersionSeenBy(FileNumber number, Moment begin, WhenAbsent whenAbsent) {
    File& file = Looked(number);
    clock_.Read(); // not under the lock
    const Lock lock(mutex_);
    // From now on DoubtChanged looks after it.
    file.isGivenOut = true;
    if (!IsTold(file, begin, lock) || (!file.look.file.stamp && whenAbsent == WhenAbsent::Doubt)) {
        return table_.FindOrAdd(number, Sight::Unseen);
    }
    if (!file.look.file.stamp) {
        // Absence is a version as well: the unit is made anew when a file turns up there.
        file.current = table_.FindOrAdd(number, Sight::NotThere);
    } else if (file.current == None) {
        const bool isProven = clock_.IsOlder(*file.look.file.stamp, file.look.moment);
        file.current = table_.AddVersion(
            {number, isProven ? Sight::Proven : Sight::Young, *file.look.file.stamp, file.look.content});
    }
    return file.current;
}

bool FileVersions::IsTooNewFor(FileNumber number, Moment begin) {
    const File& file = Looked(number);
    clock_.Read(); // not under the lock
    const Lock lock(mutex_);
    return file.look.file.stamp && !file.isDoubted && !IsTold(file, begin, lock);
}

bool FileVersions::IsCurrent(VersionNumber version) {
    const File& file = Looked(FileOf(version));
    const Lock lock(mutex_);
    // What a unit may have seen in any form is never what is there now.
    return table_[version].sight != Sight::Unseen && file.current == version;
}

FileNumber FileVersions::FileOf(VersionNumber version) const {
    const Lock lock(mutex_);
    return table_[version].file;
}

std::optional<FileStamp> FileVersions::StampOfFile(FileNumber file) {
    return Looked(file).look.file.stamp;
}

// Between the look at a file and the end of a unit, somebody may have changed it, and changed it back. What is the same
// now as it was then was the same in between, unless its stamp proves nothing.
void FileVersions::DoubtChanged() {
    const Lock lock(mutex_); // nothing may be given out between this look and what is saved after it
    for (std::size_t place = 0; place < files_.size(); ++place) {
        File& file = files_[place];
        const auto number = static_cast<FileNumber>(place);
        if (!file.isGivenOut || file.isDoubted ||
            !HasChangedSince(file, std::string(table_.Paths().Path(number)), lock)) {
            continue;
        }
        file.isDoubted = true;
        // The version itself is taken back, and with it the lists of all units that name it already.
        const VersionNumber doubted = file.look.file.stamp ? file.current : table_.Find(number, Sight::NotThere);
        if (doubted != None) {
            table_[doubted] = {number, Sight::Unseen, {}, {}};
            hasLearned_ = true;
        }
    }
}

// Whether the file is not as it was when it was looked at.
bool FileVersions::HasChangedSince(const File& file, const std::string& path, const Lock&) {
    if (AskForStamp(path) != file.look.file) {
        return true;
    }
    // A stamp that proves nothing leaves the content to be compared.
    if (file.current == None || table_[file.current].sight != Sight::Young) {
        return false;
    }
    const std::optional<ContentFingerprint> content = FingerprintOfFile(path);
    return !content || content->bytes != table_[file.current].content;
}

bool FileVersions::HasLearned() const {
    const Lock lock(mutex_);
    return hasLearned_;
}

FileVersions::Held FileVersions::HoldToSave() {
    std::unique_lock lock(mutex_);
    hasLearned_ = false;
    return {std::move(lock), table_};
}

std::string FileVersions::PathOf(FileNumber file) const {
    const Lock lock(mutex_);
    return std::string(table_.Paths().Path(file));
}

} // namespace Orvanta
