#include "history/HistoryFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <algorithm>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* Damage = "it is damaged";

// Read as a number, so that a system with another order of bytes does not take the file for its own.
constexpr std::uint64_t Magic = 0x1A5453484E56524FU;
// To be raised with every change of the head or of a row: their sizes below are those of this version.
constexpr std::uint64_t FormatVersion = 2;

/// The beginning of the file; the tables follow in the order of their sizes.
/// Of whole words, without a gap, so that its bytes are what it holds.
struct Header {
    std::uint64_t magic = Magic;
    std::uint64_t formatVersion = FormatVersion;
    Fingerprint checksum; // of all the rest
    std::uint64_t textSize = 0;
    std::uint64_t pathCount = 0;
    std::uint64_t versionCount = 0;
    std::uint64_t unitCount = 0;
    std::uint64_t listsSize = 0;
    ContentFingerprint info;
    ContentFingerprint earlierInfo;
    FileStamp infoStamp;
    std::uint64_t findingsNumber = 0;
    std::uint64_t findingsEnd = 0;
};

static_assert(sizeof(Header) == 176 && sizeof(PathTable::Entry) == 16 && sizeof(FileVersion) == 64 &&
                  sizeof(KnownUnit) == 128 && sizeof(VersionNumber) == 4,
              "a row has another layout: raise FormatVersion");

// The bytes of a table. They are what its rows hold: there are no gaps in a row.
template <typename Table>
std::string_view BytesOf(const Table& table) {
    using Row = typename Table::value_type;
    // Bytes of a gap would be whatever stood there, and the checksum another one each time.
    static_assert(std::has_unique_object_representations_v<Row>);
    return {reinterpret_cast<const char*>(table.data()), table.size() * sizeof(Row)};
}

std::string_view BytesOf(const Header& header) {
    static_assert(std::has_unique_object_representations_v<Header>);
    return {reinterpret_cast<const char*>(&header), sizeof header};
}

Fingerprint Checksum(Header header, const HistoryData& history) {
    // It can't cover itself.
    header.checksum = {};
    FingerprintBuilder checksum;
    for (const std::string_view part :
         {BytesOf(header), std::string_view(history.paths.Text()), BytesOf(history.paths.Entries()),
          BytesOf(history.versions), BytesOf(history.units), BytesOf(history.lists)}) {
        checksum.Add(part);
    }
    return checksum.Value();
}

// Leaves the stream at its start; 0 too when it can't be told.
std::uint64_t SizeOf(std::istream& input) {
    input.seekg(0, std::ios::end);
    const std::streamoff size = input.tellg();
    input.seekg(0);
    return input && size > 0 ? static_cast<std::uint64_t>(size) : 0;
}

// Whether the tables are what a file of `size` bytes holds, so that none is made for what is not there.
bool FillsFile(const Header& header, std::uint64_t size) {
    const std::pair<std::uint64_t, std::uint64_t> tables[] = {{header.textSize, 1},
                                                              {header.pathCount, sizeof(PathTable::Entry)},
                                                              {header.versionCount, sizeof(FileVersion)},
                                                              {header.unitCount, sizeof(KnownUnit)},
                                                              {header.listsSize, sizeof(VersionNumber)}};
    std::uint64_t rest = size - sizeof(Header);
    for (const auto& [rows, rowSize] : tables) {
        if (rows > rest / rowSize) {
            return false;
        }
        rest -= rows * rowSize;
    }
    return rest == 0;
}

template <typename Table>
void ReadTable(std::istream& input, Table& table, std::uint64_t rows) {
    table.reserve(rows + rows / 16); // a run adds little: without that room, the first row would double the table
    table.resize(rows);
    const std::string_view bytes = BytesOf(table);
    input.read(const_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

bool IsSound(const FileVersion& version, const PathTable& paths) {
    return PlaceOf(version.file) < paths.Size() && version.sight <= Sight::Proven;
}

bool IsSound(const KnownUnit& unit, const HistoryData& history) {
    return unit.listBegin <= history.lists.size() && unit.ListSize() <= history.lists.size() - unit.listBegin &&
           (unit.sourcePlace < unit.ListSize() || unit.hasList == 0) && unit.findings.begin <= history.findingsEnd &&
           unit.findings.size <= history.findingsEnd - unit.findings.begin;
}

bool IsSound(const HistoryData& history) {
    const auto greatest = std::max_element(history.lists.begin(), history.lists.end());
    return (greatest == history.lists.end() || PlaceOf(*greatest) < history.versions.size()) &&
           std::all_of(history.versions.begin(), history.versions.end(),
                       [&history](const FileVersion& version) { return IsSound(version, history.paths); }) &&
           std::all_of(history.units.begin(), history.units.end(),
                       [&history](const KnownUnit& unit) { return IsSound(unit, history); });
}

} // namespace

HistoryData ReadHistory(std::istream& input, HistoryChecksum checksum) {
    const std::uint64_t size = SizeOf(input);
    Header header;
    if (size < sizeof header || !input.read(reinterpret_cast<char*>(&header), sizeof header) || header.magic != Magic) {
        throw ZelmException(Damage);
    }
    if (header.formatVersion != FormatVersion) {
        throw ZelmException("another version of this program wrote it");
    }
    // Before any table is made: a damaged size must not ask for all the memory there is.
    if (!FillsFile(header, size)) {
        throw ZelmException(Damage);
    }
    HistoryData history;
    std::string text;
    std::vector<PathTable::Entry> entries;
    ReadTable(input, text, header.textSize);
    ReadTable(input, entries, header.pathCount);
    ReadTable(input, history.versions, header.versionCount);
    ReadTable(input, history.units, header.unitCount);
    ReadTable(input, history.lists, header.listsSize);
    if (!input || !PathTable::AreSound(text, entries)) {
        throw ZelmException(Damage);
    }
    history.paths = PathTable(std::move(text), std::move(entries));
    history.info = header.info;
    history.earlierInfo = header.earlierInfo;
    history.infoStamp = header.infoStamp;
    history.findingsNumber = header.findingsNumber;
    history.findingsEnd = header.findingsEnd;
    // The checksum first; whatever it lets pass is still looked at, since a number out of place would be read past a
    // table.
    const bool isIntact = checksum == HistoryChecksum::Ignore || Checksum(header, history) == header.checksum;
    if (!isIntact || !IsSound(history)) {
        throw ZelmException(Damage);
    }
    return history;
}

void WriteHistoryFile(const std::string& path, const HistoryData& history) {
    Header header;
    header.textSize = history.paths.Text().size();
    header.pathCount = history.paths.Size();
    header.versionCount = history.versions.size();
    header.unitCount = history.units.size();
    header.listsSize = history.lists.size();
    header.info = history.info;
    header.earlierInfo = history.earlierInfo;
    header.infoStamp = history.infoStamp;
    header.findingsNumber = history.findingsNumber;
    header.findingsEnd = history.findingsEnd;
    // The last field, as it covers all the others.
    header.checksum = Checksum(header, history);
    AtomicFile file(path);
    for (const std::string_view part :
         {BytesOf(header), std::string_view(history.paths.Text()), BytesOf(history.paths.Entries()),
          BytesOf(history.versions), BytesOf(history.units), BytesOf(history.lists)}) {
        file.Append(part);
    }
    file.Commit();
}

} // namespace Orvanta
