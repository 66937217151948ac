#include "history/FileVersions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <utility>

namespace Orvanta {

FileVersions::FileVersions(std::string folder) : folder_(std::move(folder)) {}

void FileVersions::Adopt(PathTable paths, std::vector<FileVersion> versions) {
    const Lock lock(mutex_);
    paths_ = std::move(paths);
    versions_ = std::move(versions);
    AddFiles(lock);
    nextVersion_.resize(versions_.size());
    for (std::uint32_t version = 0; version < versions_.size(); ++version) {
        nextVersion_[version] = std::exchange(files_[versions_[version].path].firstVersion, version);
    }
}

std::uint32_t FileVersions::NumberOf(std::string_view reported, const std::string& directory) {
    const bool isWhole = reported.empty() || IsAbsolutePath(reported);
    const std::string joined = isWhole ? std::string() : JoinPath(directory, reported);
    const Lock lock(mutex_);
    const std::uint32_t number =
        isWhole ? paths_.Add(reported, 0) : paths_.Add(joined, joined.size() - reported.size());
    AddFiles(lock);
    return number;
}

void FileVersions::LookAt(std::uint32_t file) {
    File* found = nullptr;
    {
        const Lock lock(mutex_);
        found = &files_[file];
    }
    std::call_once(found->once, [this, file, found] { Look(file, *found); });
}

void FileVersions::Look(std::uint32_t number, File& file) {
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
        if (file.current != None || !file.stamp) {
            return;
        }
    }
    ReadContent(file, path);
    const bool isProven = file.isKnown && IsProven(*file.stamp, file.looked);
    const Lock lock(mutex_);
    for (std::uint32_t version = file.firstVersion; file.isKnown && version != None; version = nextVersion_[version]) {
        FileVersion& known = versions_[version];
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

// Reads the file between two looks that agree; a file that never holds still stays unknown.
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
        file.current = FindVersion(file, Sight::Absent, lock);
        return;
    }
    for (std::uint32_t version = file.firstVersion; version != None; version = nextVersion_[version]) {
        if (versions_[version].sight == Sight::Proven && versions_[version].stamp == *file.stamp) {
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

std::uint32_t FileVersions::FindVersion(const File& file, Sight sight, const Lock&) const {
    std::uint32_t version = file.firstVersion;
    while (version != None && versions_[version].sight != sight) {
        version = nextVersion_[version];
    }
    return version;
}

std::uint32_t FileVersions::AddVersion(File& file, const FileVersion& version, const Lock&) {
    const auto number = static_cast<std::uint32_t>(versions_.size());
    versions_.push_back(version);
    nextVersion_.push_back(std::exchange(file.firstVersion, number));
    return number;
}

std::uint32_t FileVersions::FindOrAddVersion(std::uint32_t number, Sight sight, const Lock& lock) {
    File& file = files_[number];
    const std::uint32_t found = FindVersion(file, sight, lock);
    return found != None ? found : AddVersion(file, {number, sight, {}, {}}, lock);
}

void FileVersions::AddFiles(const Lock&) {
    while (files_.size() < paths_.Size()) {
        files_.emplace_back();
    }
}

std::uint32_t FileVersions::UnseenVersion(std::uint32_t file) {
    const Lock lock(mutex_);
    return FindOrAddVersion(file, Sight::Unseen, lock);
}

std::uint32_t FileVersions::VersionSeenBy(std::uint32_t number, Moment begin) {
    LookAt(number);
    ReadClock();
    const Lock lock(mutex_);
    File& file = files_[number];
    const bool isEarly = file.looked <= begin;
    file.isGivenOut = true;
    if (!file.stamp) {
        // What was absent before was not there for the unit either, or only for a while of which nobody can tell.
        const bool isTold = (isEarly || paths_.Path(number).empty()) && !file.isDoubted;
        const std::uint32_t version = FindOrAddVersion(number, isTold ? Sight::Absent : Sight::Unseen, lock);
        file.current = isTold ? version : file.current;
        return version;
    }
    const bool isTold = (file.current != None || file.isKnown) && !file.isDoubted;
    if (!isTold || (!isEarly && !(clock_ && clock_->IsOlder(*file.stamp, begin)))) {
        return FindOrAddVersion(number, Sight::Unseen, lock);
    }
    if (file.current == None) {
        const bool isProven = clock_ && clock_->IsOlder(*file.stamp, file.looked);
        file.current =
            AddVersion(file, {number, isProven ? Sight::Proven : Sight::Young, *file.stamp, file.content}, lock);
    }
    return file.current;
}

bool FileVersions::IsCurrent(std::uint32_t version) {
    const std::uint32_t number = FileOf(version);
    LookAt(number);
    const Lock lock(mutex_);
    return versions_[version].sight != Sight::Unseen && files_[number].current == version;
}

std::uint32_t FileVersions::FileOf(std::uint32_t version) const {
    const Lock lock(mutex_);
    return versions_[version].path;
}

std::vector<std::uint32_t> FileVersions::Files() const {
    const Lock lock(mutex_);
    std::vector<std::uint32_t> files;
    files.reserve(versions_.size());
    for (const FileVersion& version : versions_) {
        files.push_back(version.path);
    }
    return files;
}

void FileVersions::DoubtChanged() {
    const Lock lock(mutex_); // nothing may be given out between this look and what is saved after it
    for (std::uint32_t number = 0; number < files_.size(); ++number) {
        File& file = files_[number];
        if (!file.isGivenOut || file.isDoubted) {
            continue;
        }
        const std::string path(paths_.Path(number));
        bool hasChanged = StampOf(path) != file.stamp;
        if (!hasChanged && file.current != None && versions_[file.current].sight == Sight::Young) {
            const std::optional<ContentFingerprint> content = FingerprintOfFile(path);
            hasChanged = !content || content->bytes != versions_[file.current].content;
        }
        if (!hasChanged) {
            continue;
        }
        file.isDoubted = true;
        const std::uint32_t doubted = file.stamp ? file.current : FindVersion(file, Sight::Absent, lock);
        if (doubted != None) {
            versions_[doubted] = {number, Sight::Unseen, {}, {}};
            hasLearned_ = true;
        }
    }
}

bool FileVersions::HasLearned() const {
    const Lock lock(mutex_);
    return hasLearned_;
}

void FileVersions::CopyUsed(std::span<std::uint32_t> lists, PathTable& paths, std::vector<FileVersion>& versions) {
    const Lock lock(mutex_);
    std::vector<std::uint32_t> newVersions(versions_.size(), None);
    std::vector<std::uint32_t> newPaths(paths_.Size(), None);
    for (std::uint32_t& version : lists) {
        std::uint32_t& newVersion = newVersions[version];
        if (newVersion == None) {
            FileVersion copy = versions_[version];
            std::uint32_t& newPath = newPaths[copy.path];
            if (newPath == None) {
                newPath = paths.AddNew(paths_.Path(copy.path), paths_.DirectorySize(copy.path));
            }
            copy.path = newPath;
            newVersion = static_cast<std::uint32_t>(versions.size());
            versions.push_back(copy);
        }
        version = newVersion;
    }
    hasLearned_ = false;
}

std::vector<std::string> FileVersions::ComparablePaths() const {
    const Lock lock(mutex_);
    std::vector<std::string> paths;
    paths.reserve(paths_.Size());
    for (std::uint32_t number = 0; number < paths_.Size(); ++number) {
        paths.push_back(ComparablePath(NormalizePath(paths_.Path(number))));
    }
    return paths;
}

} // namespace Orvanta
