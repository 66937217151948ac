#include "history/UnitCosts.h"

#include "history/FingerprintedFile.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Fingerprint.h"
#include "platform/Paths.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::uint64_t Magic = 0x1A54534F4356524FU;
// To be raised with every change of the head or of a row.
constexpr std::uint64_t FormatVersion = 1;

struct Head {
    std::uint64_t magic = Magic;
    std::uint64_t formatVersion = FormatVersion;
    std::uint64_t run = 0; // number of the run that wrote the file
    std::uint64_t rows = 0;
};

constexpr std::uint64_t MicrosecondsPerTick = 100; // what the rows count
constexpr std::uint64_t BytesPerTick = 1024;

std::uint32_t Ticks(std::uint64_t value, std::uint64_t perTick) {
    constexpr std::uint64_t Most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(value / perTick, Most));
}

std::uint32_t Ticks(std::chrono::microseconds time) {
    return Ticks(static_cast<std::uint64_t>(std::max<std::int64_t>(time.count(), 0)), MicrosecondsPerTick);
}

std::chrono::microseconds Time(std::uint32_t ticks) {
    return std::chrono::microseconds(ticks * MicrosecondsPerTick);
}

template <typename Value>
std::string_view BytesOf(const Value& value) {
    // Bytes of a gap would be whatever stood there, and the checksum another one each time.
    static_assert(std::has_unique_object_representations_v<Value>);
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

// Takes a value off the front of `bytes`, which holds at least that much.
template <typename Value>
void Take(std::string_view& bytes, Value& value) {
    std::memcpy(&value, bytes.data(), sizeof value);
    bytes.remove_prefix(sizeof value);
}

ContentFingerprint ChecksumOf(std::string_view bytes) {
    ContentFingerprinter content;
    content.Add(bytes);
    return content.Value();
}

} // namespace

CostKey CostKeyOf(const CompileCommand& command) {
    return CostKeyOf(*command.absoluteDirectory, command.SourceFile(), command.arguments.ToVector());
}

CostKey CostKeyOf(std::string_view directory, std::string_view source, std::span<const std::string> arguments) {
    FingerprintBuilder builder;
    for (const std::string& argument : arguments) {
        builder.Add(argument);
    }
    return {FingerprintBuilder().Add(directory).Add(source).Value().low, builder.Value().low};
}

UnitCosts::UnitCosts(const std::string& folder) : path_(JoinPath(folder, "unit_costs.bin")) {
    try {
        Read();
    } catch (const FileException&) {
        rows_.clear(); // there is none, or it can't be read: nothing is known
    }
}

void UnitCosts::Read() {
    const std::string content = ReadWholeFile(path_);
    std::string_view bytes = content;
    Head head;
    Fingerprint checksum;
    if (bytes.size() < sizeof head + sizeof checksum) {
        return;
    }
    std::string_view behind = bytes.substr(bytes.size() - sizeof checksum);
    bytes.remove_suffix(sizeof checksum);
    Take(behind, checksum);
    if (ChecksumOf(bytes).bytes != checksum) {
        return;
    }
    Take(bytes, head);
    if (head.magic != Magic || head.formatVersion != FormatVersion || head.rows != bytes.size() / sizeof(Row)) {
        return;
    }
    run_ = static_cast<std::uint32_t>(head.run) + 1;
    rows_.resize(head.rows);
    for (Row& row : rows_) {
        Take(bytes, row);
    }
}

bool UnitCosts::ComesBefore(const Row& left, const Row& right) {
    return std::tie(left.kind, left.key.source, left.key.arguments) <
           std::tie(right.kind, right.key.source, right.key.arguments);
}

std::optional<UnitCost> UnitCosts::Find(CostKind kind, const CostKey& key) const {
    const auto search = [this, kind](const CostKey& wanted) {
        const Row row = {.kind = static_cast<std::uint32_t>(kind), .key = wanted};
        return std::lower_bound(rows_.begin(), rows_.end(), row, ComesBefore);
    };
    const auto isOfSource = [&](std::vector<Row>::const_iterator row) {
        return row != rows_.end() && row->kind == static_cast<std::uint32_t>(kind) && row->key.source == key.source;
    };
    auto row = search(key);
    if (!isOfSource(row) || row->key != key) {
        row = search({key.source, 0});
    }
    if (!isOfSource(row)) {
        return std::nullopt;
    }
    return UnitCost{
        .compiler = {Time(row->compilerWall), Time(row->compilerProcessor), row->compilerMemory * BytesPerTick},
        .core = {Time(row->coreWall), Time(row->coreProcessor), row->coreMemory * BytesPerTick},
        .textBytes = row->textBytes};
}

void UnitCosts::Record(CostKind kind, const CostKey& key, const UnitCost& cost) {
    if (path_.empty()) {
        return;
    }
    fresh_.push_back({static_cast<std::uint32_t>(kind), run_, key, cost.textBytes, Ticks(cost.compiler.wall),
                      Ticks(cost.compiler.processor), Ticks(cost.compiler.peakMemory, BytesPerTick),
                      Ticks(cost.core.wall), Ticks(cost.core.processor), Ticks(cost.core.peakMemory, BytesPerTick)});
}

void UnitCosts::Merge() {
    std::stable_sort(fresh_.begin(), fresh_.end(), ComesBefore);
    std::vector<Row> merged;
    merged.reserve(rows_.size() + fresh_.size());
    // Of equal rows, those of the first range come first.
    std::merge(fresh_.begin(), fresh_.end(), rows_.begin(), rows_.end(), std::back_inserter(merged), ComesBefore);
    const auto isSame = [](const Row& left, const Row& right) {
        return !ComesBefore(left, right); // as they are sorted
    };
    merged.erase(std::unique(merged.begin(), merged.end(), isSame), merged.end());
    rows_ = std::move(merged);
    fresh_.clear();
}

void UnitCosts::Limit(std::size_t units) {
    constexpr std::size_t Spare = 1000;
    const std::size_t most = 4 * units + Spare; // a unit may be known for several kinds
    if (rows_.size() <= most) {
        return;
    }
    std::stable_sort(rows_.begin(), rows_.end(),
                     [](const Row& left, const Row& right) { return left.run > right.run; });
    rows_.resize(most);
    std::sort(rows_.begin(), rows_.end(), ComesBefore);
}

void UnitCosts::Save(std::size_t units) {
    if (fresh_.empty()) {
        return;
    }
    Merge();
    Limit(units);
    FingerprintedFile file(path_);
    file.Append(BytesOf(Head{.run = run_, .rows = rows_.size()}));
    for (const Row& row : rows_) {
        file.Append(BytesOf(row));
    }
    const Fingerprint checksum = file.Content().bytes;
    file.Append(BytesOf(checksum));
    file.Commit();
}

} // namespace Orvanta
