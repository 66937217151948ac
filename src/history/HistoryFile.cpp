#include "history/HistoryFile.h"

#include "platform/Exceptions.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* Damage = "it is damaged";

// Read as a number, so that a system with another order of bytes does not take the file for its own.
constexpr std::uint64_t Magic = 0x1A5453484E56524FU;
// To be raised with every change of the head or of a row: their sizes below are those of this version.
constexpr std::uint64_t FormatVersion = 3;

/// The beginning of the file; the tables follow, and then a Checksum of all before it.
/// Of whole words, without a gap, so that its bytes are what it holds.
struct Header {
    std::uint64_t magic = Magic;
    std::uint64_t formatVersion = FormatVersion;
    HistoryCounts counts;
    HistoryHead head;
};

using Checksum = Fingerprint;

static_assert(sizeof(Header) == 160 && sizeof(PathTable::Entry) == 16 && sizeof(FileVersion) == 64 &&
                  sizeof(KnownUnit) == 128 && sizeof(VersionNumber) == 4,
              "a row has another layout: raise FormatVersion");

// The bytes of a table. They are what its rows hold: there are no gaps in a row.
template <typename Table>
std::string_view BytesOf(const Table& table) {
    return {reinterpret_cast<const char*>(table.data()), table.size() * sizeof(typename Table::value_type)};
}

Checksum ChecksumOf(const Header& header, const HistoryData& history) {
    ContentFingerprinter checksum;
    checksum.Add({reinterpret_cast<const char*>(&header), sizeof header});
    for (const std::string_view part : {std::string_view(history.paths.Text()), BytesOf(history.paths.Entries()),
                                        BytesOf(history.versions), BytesOf(history.units), BytesOf(history.lists)}) {
        checksum.Add(part);
    }
    return checksum.Value().bytes;
}

// Leaves the stream at its start; 0 too when it can't be told.
std::uint64_t SizeOf(std::istream& input) {
    input.seekg(0, std::ios::end);
    const std::streamoff size = input.tellg();
    input.seekg(0);
    return input && size > 0 ? static_cast<std::uint64_t>(size) : 0;
}

// Whether the tables are what a file of `size` bytes holds, so that none is made for what is not there.
bool FillsFile(const HistoryCounts& counts, std::uint64_t size) {
    const std::pair<std::uint64_t, std::uint64_t> tables[] = {{counts.textSize, 1},
                                                              {counts.paths, sizeof(PathTable::Entry)},
                                                              {counts.versions, sizeof(FileVersion)},
                                                              {counts.units, sizeof(KnownUnit)},
                                                              {counts.lists, sizeof(VersionNumber)}};
    std::uint64_t rest = size - sizeof(Header) - sizeof(Checksum);
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

HistoryData ReadHistory(std::istream& input, HistoryChecksum checking) {
    const std::uint64_t size = SizeOf(input);
    Header header;
    if (size < sizeof header + sizeof(Checksum) || !input.read(reinterpret_cast<char*>(&header), sizeof header) ||
        header.magic != Magic) {
        throw ZelmException(Damage);
    }
    if (header.formatVersion != FormatVersion) {
        throw ZelmException("another version of this program wrote it");
    }
    // Before any table is made: a damaged size must not ask for all the memory there is.
    if (!FillsFile(header.counts, size)) {
        throw ZelmException(Damage);
    }
    HistoryData history;
    static_cast<HistoryHead&>(history) = header.head;
    std::string text;
    std::vector<PathTable::Entry> entries;
    Checksum checksum;
    ReadTable(input, text, header.counts.textSize);
    ReadTable(input, entries, header.counts.paths);
    ReadTable(input, history.versions, header.counts.versions);
    ReadTable(input, history.units, header.counts.units);
    ReadTable(input, history.lists, header.counts.lists);
    input.read(reinterpret_cast<char*>(&checksum), sizeof checksum);
    if (!input || !PathTable::AreSound(text, entries)) {
        throw ZelmException(Damage);
    }
    history.paths = PathTable(std::move(text), std::move(entries));
    // The checksum first; whatever it lets pass is still looked at, since a number out of place would be read past a
    // table.
    const bool isIntact = checking == HistoryChecksum::Ignore || ChecksumOf(header, history) == checksum;
    if (!isIntact || !IsSound(history)) {
        throw ZelmException(Damage);
    }
    return history;
}

HistoryFileWriter::HistoryFileWriter(const std::string& path, const HistoryHead& head, const HistoryCounts& counts)
    : file_(path) {
    AddRow(Header{Magic, FormatVersion, counts, head});
}

void HistoryFileWriter::Commit() {
    const Checksum checksum = file_.Content().bytes;
    AddRow(checksum);
    file_.Commit();
}

} // namespace Orvanta
