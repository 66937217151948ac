#include "history/VersionTable.h"

#include <utility>

namespace Orvanta {

VersionTable::VersionTable(PathTable paths, std::vector<FileVersion> versions)
    : paths_(std::move(paths)), versions_(std::move(versions)), firstVersions_(paths_.Size(), None),
      nextVersions_(versions_.size()) {
    for (std::size_t place = 0; place < versions_.size(); ++place) {
        nextVersions_[place] =
            std::exchange(firstVersions_[PlaceOf(versions_[place].file)], static_cast<VersionNumber>(place));
    }
}

FileNumber VersionTable::Add(std::string_view path, std::uint64_t directorySize) {
    const FileNumber file = paths_.Add(path, directorySize);
    if (firstVersions_.size() < paths_.Size()) {
        firstVersions_.push_back(None);
    }
    return file;
}

VersionNumber VersionTable::Find(FileNumber file, Sight sight) const {
    VersionNumber version = First(file);
    while (version != None && (*this)[version].sight != sight) {
        version = Next(version);
    }
    return version;
}

VersionNumber VersionTable::AddVersion(const FileVersion& version) {
    const auto number = static_cast<VersionNumber>(versions_.size());
    versions_.push_back(version);
    nextVersions_.push_back(std::exchange(firstVersions_[PlaceOf(version.file)], number));
    return number;
}

VersionNumber VersionTable::FindOrAdd(FileNumber file, Sight sight) {
    const VersionNumber found = Find(file, sight);
    return found != None ? found : AddVersion({file, sight, {}, {}});
}

} // namespace Orvanta
