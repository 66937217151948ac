#include "history/HistoryExtract.h"

namespace Orvanta {

namespace {

constexpr VersionNumber NoVersion{0xFFFFFFFFU};
constexpr FileNumber NoPath{0xFFFFFFFFU};

} // namespace

HistoryExtract::HistoryExtract(const HistoryRecord& record, const VersionTable& files)
    : record_(record), files_(files), newVersions_(files.Versions().size(), NoVersion),
      newPaths_(files.Paths().Size(), NoPath) {
    for (std::size_t unit = 0; unit < record.Size(); ++unit) {
        // Of the others nothing is known that a run could use.
        if (record[unit].hasList != 0 || record[unit].leftOutWith != Fingerprint{}) {
            units_.push_back(unit);
            for (const VersionNumber version : record.ListOf(unit)) {
                Number(version);
            }
        }
    }
}

void HistoryExtract::Number(VersionNumber version) {
    if (newVersions_[PlaceOf(version)] != NoVersion) {
        return;
    }
    newVersions_[PlaceOf(version)] = static_cast<VersionNumber>(versions_.size());
    versions_.push_back(version);
    const FileNumber file = files_[version].file;
    if (newPaths_[PlaceOf(file)] == NoPath) {
        newPaths_[PlaceOf(file)] = static_cast<FileNumber>(paths_.size());
        paths_.push_back(file);
    }
}

HistoryCounts HistoryExtract::Counts() const {
    HistoryCounts counts;
    for (const FileNumber file : paths_) {
        counts.textSize += files_.Paths().Path(file).size();
    }
    for (const std::size_t unit : units_) {
        counts.lists += record_[unit].ListSize();
    }
    counts.paths = paths_.size();
    counts.versions = versions_.size();
    counts.units = units_.size();
    return counts;
}

void HistoryExtract::WriteTo(HistoryFileWriter& writer) const {
    for (const FileNumber file : paths_) {
        writer.AddText(files_.Paths().Path(file));
    }
    PathTable::Entry entry;
    for (const FileNumber file : paths_) {
        entry.end += files_.Paths().Path(file).size();
        entry.directorySize = files_.Paths().DirectorySize(file);
        writer.AddRow(entry);
    }
    for (const VersionNumber number : versions_) {
        FileVersion version = files_[number];
        version.file = newPaths_[PlaceOf(version.file)];
        writer.AddRow(version);
    }
    std::uint64_t listBegin = 0;
    for (const std::size_t unit : units_) {
        KnownUnit row = record_[unit];
        row.listBegin = listBegin;
        writer.AddRow(row);
        listBegin += row.ListSize();
    }
    for (const std::size_t unit : units_) {
        for (const VersionNumber version : record_.ListOf(unit)) {
            writer.AddRow(newVersions_[PlaceOf(version)]);
        }
    }
}

} // namespace Orvanta
