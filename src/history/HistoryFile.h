#pragma once

#include "history/Numbers.h"
#include "history/PathTable.h"
#include "platform/FileStamp.h"
#include "platform/Fingerprint.h"

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

// The binary file of a history, `unit_history.bin`: a head, and then the tables of HistoryData as they stand in memory,
// so that a hundred thousand units are read with five calls and no parsing. A checksum over all of it tells damage; the
// version in the head tells another layout. Such a file is not converted: all that it holds can be learned anew.

namespace Orvanta {

/// How a file was seen. Only the last two say something of its content, and only the last one without reading it.
enum class Sight : std::uint32_t {
    Unseen,   ///< it is not known what the unit saw, or there was no file that it could have seen: never current
    NotThere, ///< the compiler looked for a file here, and there was none; current as long as there is none
    Young,    ///< the file could still change without having another stamp: its content is compared next time
    Proven,   ///< another content has another stamp
};

/// A file as some unit saw it.
struct FileVersion {
    FileNumber file = {};
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

/// What is known of a unit. Its list has three parts, one behind the other.
struct KnownUnit {
    Fingerprint source;            ///< of UnitIdentity::id
    Fingerprint arguments;         ///< UnitIdentity::arguments
    Fingerprint inputs;            ///< with which the list was made
    Fingerprint leftOutWith;       ///< the inputs with which the unit was left out; all zero when it was not
    std::uint64_t listBegin = 0;   ///< in the table of lists
    std::uint32_t namesake = 1;    ///< which of the units with the same id
    std::uint32_t named = 0;       ///< how many files the core has listed
    std::uint32_t added = 0;       ///< how many more a person has written into the dependency information
    std::uint32_t unnamed = 0;     ///< how many more decide the result and stand in no dependency information
    std::uint32_t sourcePlace = 0; ///< which of the list is the unit's source
    std::uint16_t hasList = 0;     ///< 1: the list is known
    std::uint16_t hasResult = 0;   ///< 1: the last run was a success
    FindingsRange findings;        ///< of that success

    /// The length of all three parts.
    [[nodiscard]] std::uint64_t ListSize() const noexcept { return std::uint64_t{named} + added + unnamed; }
};

/// What the binary file holds.
struct HistoryData {
    ContentFingerprint info;        ///< the `depend_info.json` that names the same files as this
    ContentFingerprint earlierInfo; ///< the one before it, which may lack some
    FileStamp infoStamp; ///< of the file `info`, when another content would have another stamp; all zero when not known
    std::uint64_t findingsNumber = 0; ///< of the file with the findings; 0: there is none
    std::uint64_t findingsEnd = 0;    ///< how much of it counts
    PathTable paths;
    std::vector<FileVersion> versions;
    std::vector<KnownUnit> units;
    std::vector<VersionNumber> lists;
};

enum class HistoryChecksum {
    Compare,
    Ignore, ///< for whoever tests what is told apart without it
};

/// Reads what WriteHistoryFile wrote. Makes nothing that is larger than the file.
/// \throws ZelmException when it is damaged, cut short, of another version or something else; the text is the reason
[[nodiscard]] HistoryData ReadHistory(std::istream& input, HistoryChecksum checksum = HistoryChecksum::Compare);

/// Replaces the file at `path` in one step.
/// \throws FileException
void WriteHistoryFile(const std::string& path, const HistoryData& history);

} // namespace Orvanta
