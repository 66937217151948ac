#pragma once

#include "history/PathTable.h"
#include "platform/FileStamp.h"
#include "platform/Fingerprint.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// How a file was seen.
enum class Sight : std::uint32_t {
    Unseen, ///< it is not known what the unit saw
    Absent, ///< there was no file
    Young,  ///< the file could still change without having another stamp
    Proven, ///< another content has another stamp
};

/// A file as some unit saw it.
struct FileVersion {
    std::uint32_t path = 0; ///< its number in the table
    Sight sight = Sight::Unseen;
    FileStamp stamp;
    Fingerprint content;
};

/// Where the kept findings of a unit stand.
struct FindingsRange {
    std::uint64_t begin = 0;
    std::uint64_t size = 0;
    Fingerprint text;
};

/// What is known of a unit.
struct KnownUnit {
    Fingerprint id;
    Fingerprint arguments;
    Fingerprint inputs;      ///< with which the list was made
    Fingerprint leftOutWith; ///< the inputs with which the unit was left out; all zero when it was not
    std::uint64_t listBegin = 0;
    std::uint32_t named = 0;     ///< how many files the dependency information names
    std::uint32_t unnamed = 0;   ///< how many more the unit saw; they follow the others
    std::uint32_t hasList = 0;   ///< 1: the list is known
    std::uint32_t hasResult = 0; ///< 1: the last run was a success
    FindingsRange findings;      ///< of that success
};

/// The list of the unit, in the table that it is kept in.
[[nodiscard]] std::span<const std::uint32_t> ListOf(const KnownUnit& unit, const std::vector<std::uint32_t>& lists);

/// What the binary file holds.
struct HistoryData {
    ContentFingerprint dependencyInfo; ///< the `depend_info.json` that was there when the file was written
    std::uint64_t isAhead = 0;         ///< 1: the lists here are newer than that
    std::uint64_t findingsNumber = 0;  ///< of the file with the findings; 0: there is none
    std::uint64_t findingsEnd = 0;     ///< how much of it counts
    PathTable paths;
    std::vector<FileVersion> versions;
    std::vector<KnownUnit> units;
    std::vector<std::uint32_t> lists; ///< numbers of versions
};

enum class HistoryChecksum {
    Compare,
    Ignore, ///< for whoever tests what is told apart without it
};

/// Reads what WriteHistoryFile wrote; absent when it is damaged, cut short or something else. Makes nothing that is
/// larger than the file.
[[nodiscard]] std::optional<HistoryData> ReadHistory(std::istream& input,
                                                     HistoryChecksum checksum = HistoryChecksum::Compare);

/// Replaces the file at `path` in one step.
/// \throws ZelmException: the path, then the system's reason
void WriteHistoryFile(const std::string& path, const HistoryData& history);

} // namespace Orvanta
