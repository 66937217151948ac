#pragma once

#include "history/FingerprintedFile.h"
#include "history/Numbers.h"
#include "history/PathTable.h"
#include "platform/FileStamp.h"
#include "platform/Fingerprint.h"

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// The binary file of a history, `unit_history.bin`: a head, and then the tables of HistoryData as they stand in memory,
// so that a hundred thousand units are read with five calls and no parsing. A checksum of all that tells damage; it
// stands at the end, so that the file can be written row by row. The version in the head tells another layout. Such a
// file is not converted: all that it holds can be learned anew.

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

/// What the binary file tells beside its tables.
struct HistoryHead {
    ContentFingerprint info;        ///< the `depend_info.json` that names the same files as this
    ContentFingerprint earlierInfo; ///< the one before it, which may lack some
    FileStamp infoStamp; ///< of the file `info`, when another content would have another stamp; all zero when not known
    std::uint64_t findingsNumber = 0; ///< of the file with the findings; 0: there is none
    std::uint64_t findingsEnd = 0;    ///< how much of it counts
};

/// What the binary file holds.
struct HistoryData : HistoryHead {
    PathTable paths;
    std::vector<FileVersion> versions;
    std::vector<KnownUnit> units;
    std::vector<VersionNumber> lists;
};

enum class HistoryChecksum {
    Compare,
    Ignore, ///< for whoever tests what is told apart without it
};

/// Reads what HistoryFileWriter wrote. Makes nothing that is much larger than the file.
/// \throws ZelmException when it is damaged, cut short, of another version or something else; the text is the reason
[[nodiscard]] HistoryData ReadHistory(std::istream& input, HistoryChecksum checking = HistoryChecksum::Compare);

/// How many rows the tables of a file have, in their order there.
struct HistoryCounts {
    std::uint64_t textSize = 0; ///< of all paths together
    std::uint64_t paths = 0;
    std::uint64_t versions = 0;
    std::uint64_t units = 0;
    std::uint64_t lists = 0;
};

/// Writes the binary file, and replaces the one at `path` in one step. All functions throw FileException.
class HistoryFileWriter {
public:
    HistoryFileWriter(const std::string& path, const HistoryHead& head, const HistoryCounts& counts);

    /// To be called for all paths, one behind the other.
    void AddText(std::string_view path) { file_.Append(path); }

    /// Behind those, for each row of each table, in the order of HistoryCounts.
    template <typename Row>
    void AddRow(const Row& row) {
        // Bytes of a gap would be whatever stood there, and the checksum another one each time.
        static_assert(std::has_unique_object_representations_v<Row>);
        file_.Append({reinterpret_cast<const char*>(&row), sizeof row});
    }

    /// The last call: the file is there.
    void Commit();

private:
    FingerprintedFile file_;
};

} // namespace Orvanta
