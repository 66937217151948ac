#include "shards/StageFolder.h"

#include "analysis/RunPlaces.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "shards/PartSet.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

constexpr const char* CollectedName = "collected";
constexpr const char* PartName = "part.orvpart";
constexpr const char* LinkedName = "of-collected";
constexpr const char* CountName = "count";
constexpr const char* UnitExtension = ".Orvanta.dfo";

// Of a folder that is not there, none.
std::vector<std::string> EntriesOf(const std::string& folder) {
    std::vector<std::string> paths;
    std::error_code error;
    for (fs::directory_iterator entry(NativePath(folder), error), end; !error && entry != end; entry.increment(error)) {
        paths.push_back(JoinPath(folder, PathText(entry->path().filename())));
    }
    if (error && error != std::errc::no_such_file_or_directory) {
        throw FileException(folder, error.message()); // what can't be seen might be missed for good
    }
    return paths;
}

std::vector<std::string> UnitFilesIn(const std::string& folder) {
    std::vector<std::string> files = EntriesOf(folder);
    std::erase_if(files, [](const std::string& path) { return !path.ends_with(UnitExtension); });
    return files;
}

std::string CountIn(const std::string& folder) {
    return std::to_string(UnitFilesIn(folder).size()) + "\n";
}

// No two runs of a shard leave the same part: it tells the microseconds that each unit took.
Fingerprint FingerprintOfParts(const std::vector<std::string>& paths) {
    FingerprintBuilder builder;
    for (const std::string& path : paths) {
        builder.Add(FingerprintOfFile(path).value_or(ContentFingerprint()).bytes);
    }
    return builder.Value();
}

PartSet OpenParts(const std::vector<std::string>& paths) {
    try {
        return PartSet(paths);
    } catch (const ZelmException& error) {
        throw ZelmException(error.what(), error.Hint().empty() ? "Remove the folders of those that are of another run"
                                                               : error.Hint());
    }
}

std::string TextOf(const Fingerprint& mark) {
    return "1 " + std::to_string(mark.high) + " " + std::to_string(mark.low) + "\n"; // the form first
}

} // namespace

std::string StageFolder::FolderOf(const Shard& shard) const {
    const std::string name = std::to_string(shard.number) + "-of-" + std::to_string(shard.count);
    return JoinPath(JoinPath(path_, CollectedName), name);
}

std::string StageFolder::PartOf(const Shard& shard) const {
    return JoinPath(FolderOf(shard), PartName);
}

std::string StageFolder::UnitFile(const Shard& shard, std::size_t number) const {
    return JoinPath(FolderOf(shard), std::to_string(number + 1) + UnitExtension);
}

std::string StageFolder::LinkedFolder() const {
    return JoinPath(path_, "linked");
}

std::string StageFolder::MergedFile() const {
    return JoinPath(LinkedFolder(), MergedFileName);
}

void StageFolder::ForgetUnits(const Shard& shard) const {
    for (const std::string& path : UnitFilesIn(FolderOf(shard))) {
        RemoveFile(path);
        if (PathExists(path)) {
            throw FileException("Can't remove", path, "it is of an earlier run");
        }
    }
}

void StageFolder::NoteUnits(const Shard& shard) const {
    const std::string folder = FolderOf(shard);
    AtomicFile file(JoinPath(folder, CountName), AtomicFile::Durability::Synced);
    file.Append(CountIn(folder));
    file.Commit();
}

std::vector<std::string> StageFolder::ListParts() const {
    std::vector<std::string> parts;
    for (const std::string& folder : EntriesOf(JoinPath(path_, CollectedName))) {
        if (std::string part = JoinPath(folder, PartName); PathExists(part)) {
            parts.push_back(std::move(part));
        }
    }
    std::sort(parts.begin(), parts.end()); // the system lists them in any order
    return parts;
}

CollectedUnits StageFolder::ReadCollected(const PartMakers& makers) const {
    constexpr const char* Advice = "Run --intermodular-stage collect for it, with the same options";
    const std::vector<std::string> paths = ListParts();
    if (paths.empty()) {
        throw ZelmException("Nothing is collected in " + path_, "Run --intermodular-stage collect first");
    }
    CollectedUnits collected;
    collected.parts = FingerprintOfParts(paths);
    PartSet parts = OpenParts(paths);
    if (const auto difference = DifferenceOf(makers, parts.Head().makers)) {
        throw ZelmException("What is collected in " + path_ + " is not of this run: it differs in " + *difference,
                            "Run all stages with the same options, for the same build");
    }
    if (const std::string gaps = parts.Gaps(); !gaps.empty()) {
        throw ZelmException("Not all is collected in " + path_ + ":\n" + gaps.substr(0, gaps.size() - 1), Advice);
    }
    for (const std::string& path : paths) {
        const std::string folder(DirectoryOf(path));
        if (const std::string count = JoinPath(folder, CountName);
            !PathExists(count) || ReadWholeFile(count) != CountIn(folder)) {
            throw ZelmException("Not all that was collected can be seen in " + folder, Advice);
        }
    }
    collected.shards = parts.Head().shard.count;
    for (std::size_t unit = 0; unit < parts.UnitCount(); ++unit) {
        collected.shardOf.push_back(parts.ShardOf(unit));
        UnitResult result = parts.Next().result;
        if (IsFailure(result.status)) {
            collected.failures.emplace(unit, CollectFailure{result.status, std::move(result.reason)});
        }
    }
    return collected;
}

void StageFolder::ForgetLinked() const {
    RemoveFile(JoinPath(LinkedFolder(), LinkedName));
}

void StageFolder::NoteLinked(const CollectedUnits& collected) const {
    AtomicFile file(JoinPath(LinkedFolder(), LinkedName), AtomicFile::Durability::Synced);
    file.Append(TextOf(collected.parts));
    file.Commit();
}

void StageFolder::RequireLinked(const CollectedUnits& collected) const {
    const std::string path = JoinPath(LinkedFolder(), LinkedName);
    constexpr const char* Advice = "Run --intermodular-stage link";
    if (!PathExists(path)) {
        throw ZelmException("Nothing is linked in " + path_, Advice);
    }
    if (ReadWholeFile(path) != TextOf(collected.parts)) {
        throw ZelmException("What is linked in " + path_ + " is not what is collected there now", Advice);
    }
}

} // namespace Orvanta
