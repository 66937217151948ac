#pragma once

#include "history/HistoryFile.h"
#include "history/Numbers.h"
#include "history/PathTable.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Paths, and of each file the versions in which units saw it. Touches no disk and takes no lock.
class VersionTable {
public:
    /// In the place of a number: there is none.
    static constexpr VersionNumber None{0xFFFFFFFFU};

    VersionTable() = default;

    /// From what an earlier run has written.
    VersionTable(PathTable paths, std::vector<FileVersion> versions);

    /// The number of a path, new or old; `directorySize` as in PathTable.
    [[nodiscard]] FileNumber Add(std::string_view path, std::uint64_t directorySize);

    [[nodiscard]] const PathTable& Paths() const noexcept { return paths_; }

    /// By number.
    [[nodiscard]] const std::vector<FileVersion>& Versions() const noexcept { return versions_; }

    /// Lasts until a version is added; so does the next.
    [[nodiscard]] const FileVersion& operator[](VersionNumber version) const { return versions_[PlaceOf(version)]; }

    [[nodiscard]] FileVersion& operator[](VersionNumber version) { return versions_[PlaceOf(version)]; }

    /// The newest version of a file; `None` when no unit has seen it.
    [[nodiscard]] VersionNumber First(FileNumber file) const { return firstVersions_[PlaceOf(file)]; }

    /// The next older version of the same file; `None` behind the last.
    [[nodiscard]] VersionNumber Next(VersionNumber version) const { return nextVersions_[PlaceOf(version)]; }

    /// The newest version of the file that was seen in this way, or `None`.
    [[nodiscard]] VersionNumber Find(FileNumber file, Sight sight) const;

    /// Puts a version in front of its file's others.
    VersionNumber AddVersion(const FileVersion& version);

    /// For sights that say nothing of a content, of which one version for each file is enough.
    VersionNumber FindOrAdd(FileNumber file, Sight sight);

private:
    PathTable paths_;
    std::vector<FileVersion> versions_;
    // The versions of a file are a list through the table: most have one, and a list for each would be an allocation.
    std::vector<VersionNumber> firstVersions_; // by file
    std::vector<VersionNumber> nextVersions_;  // by version
};

} // namespace Orvanta
