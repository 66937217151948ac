#include "shards/UnitPartition.h"

#include <algorithm>
#include <numeric>
#include <queue>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

/// What a shard has to do so far.
struct Load {
    std::uint64_t price = 0;
    std::uint32_t shard = 0; // from 1

    // Of equal ones the first has more room.
    friend bool operator>(const Load& left, const Load& right) {
        return std::tie(left.price, left.shard) > std::tie(right.price, right.shard);
    }
};

std::uint64_t MedianOf(std::vector<std::uint64_t> prices) {
    const auto middle = prices.begin() + static_cast<std::ptrdiff_t>(prices.size() / 2);
    std::nth_element(prices.begin(), middle, prices.end());
    return middle == prices.end() ? 0 : *middle;
}

// At least 1 each, so that units which take nothing are spread as well.
std::vector<std::uint64_t> PricesOf(std::span<const CompileCommand> units, const UnitPrices& prices) {
    std::vector<std::optional<std::uint64_t>> found;
    found.reserve(units.size());
    std::vector<std::uint64_t> known;
    std::unordered_map<std::string, std::size_t> occurrences; // by source
    for (const CompileCommand& unit : units) {
        const std::string source = SourcePath(unit);
        found.push_back(prices.Find(source, occurrences[source]++));
        if (found.back()) {
            known.push_back(*found.back());
        }
    }
    const std::uint64_t median = MedianOf(std::move(known));
    std::vector<std::uint64_t> whole(units.size());
    std::transform(found.begin(), found.end(), whole.begin(), [median](const std::optional<std::uint64_t>& price) {
        return std::max<std::uint64_t>(price.value_or(median), 1);
    });
    return whole;
}

Fingerprint FingerprintOf(const UnitPartition& partition, std::uint32_t count) {
    FingerprintBuilder builder;
    builder.Add(count);
    for (const std::uint32_t shard : partition) {
        builder.Add(shard);
    }
    return builder.Value();
}

CostKey KeyOf(const CompileCommand& unit, const RootMark& root) {
    std::vector<std::string> arguments = unit.arguments.ToVector();
    for (std::string& argument : arguments) {
        argument = root.Marked(std::move(argument));
    }
    return CostKeyOf(root.Marked(*unit.absoluteDirectory), root.Marked(std::string(unit.SourceFile())), arguments);
}

std::vector<CostKey> KeysOf(std::span<const CompileCommand> units, const RootMark& root) {
    std::vector<CostKey> keys(units.size());
    std::transform(units.begin(), units.end(), keys.begin(),
                   [&root](const CompileCommand& unit) { return KeyOf(unit, root); });
    return keys;
}

Fingerprint FingerprintOf(const Environment& environment, const RootMark& root) {
    FingerprintBuilder builder;
    for (const auto& [name, value] : environment) {
        builder.Add(name).Add(root.Marked(value));
    }
    return builder.Value();
}

/// Makes the fingerprint of what many units share once.
template <typename Shared>
class SharedFingerprints {
public:
    /// `make(*shared)` makes it.
    template <typename Make>
    const Fingerprint& Of(const std::shared_ptr<const Shared>& shared, const Make& make) {
        const auto [place, isNew] = known_.try_emplace(shared.get());
        if (isNew) {
            place->second = make(*shared);
        }
        return place->second;
    }

private:
    std::unordered_map<const Shared*, Fingerprint> known_;
};

// What is seen of a unit on all machines alike.
Fingerprint FingerprintOfBuild(const CollectedCommands& commands, std::span<const CostKey> keys, const RootMark& root) {
    FingerprintBuilder builder;
    SharedFingerprints<Environment> environments;
    const auto make = [&root](const Environment& environment) {
        return FingerprintOf(environment, root);
    };
    builder.Add(commands.invocations).Add(keys.size());
    for (std::size_t unit = 0; unit < keys.size(); ++unit) {
        const CompileCommand& command = commands.units[unit];
        builder.Add(Fingerprint{keys[unit].source, keys[unit].arguments}).Add(command.invocation);
        builder.Add(environments.Of(command.environment, make));
        builder.Add(static_cast<std::uint64_t>(command.environmentScope));
    }
    for (const SkippedInvocation& skipped : commands.skipped) {
        builder.Add(skipped.invocation).Add(static_cast<std::uint64_t>(skipped.fate)).Add(root.Marked(skipped.what));
    }
    return builder.Value();
}

Fingerprint FingerprintOfCompilers(std::span<const CompileCommand> units) {
    FingerprintBuilder builder;
    SharedFingerprints<CompilerInfo> compilers;
    const auto make = [](const CompilerInfo& compiler) {
        // Not its path: another machine may have it elsewhere.
        return FingerprintBuilder().Add(static_cast<std::uint64_t>(compiler.type)).Add(compiler.version).Value();
    };
    for (const CompileCommand& unit : units) {
        builder.Add(compilers.Of(unit.compiler, make));
    }
    return builder.Value();
}

} // namespace

UnitPartition PartitionByHash(std::span<const CostKey> units, std::uint32_t count) {
    UnitPartition partition;
    partition.reserve(units.size());
    for (const CostKey& key : units) {
        const Fingerprint hash = FingerprintBuilder().Add(key.source).Add(key.arguments).Value();
        partition.push_back(static_cast<std::uint32_t>(hash.low % count) + 1);
    }
    return partition;
}

UnitPartition PartitionByPrice(std::span<const CompileCommand> units, std::uint32_t count, const UnitPrices& prices) {
    const std::vector<std::uint64_t> priceOf = PricesOf(units, prices);
    std::vector<std::size_t> longestFirst(units.size());
    std::iota(longestFirst.begin(), longestFirst.end(), std::size_t{0});
    std::stable_sort(longestFirst.begin(), longestFirst.end(),
                     [&priceOf](std::size_t left, std::size_t right) { return priceOf[left] > priceOf[right]; });
    std::priority_queue<Load, std::vector<Load>, std::greater<>> loads;
    for (std::uint32_t shard = 1; shard <= count; ++shard) {
        loads.push({0, shard});
    }
    UnitPartition partition(units.size());
    for (const std::size_t unit : longestFirst) {
        const Load least = loads.top();
        loads.pop();
        partition[unit] = least.shard;
        loads.push({least.price + priceOf[unit], least.shard});
    }
    return partition;
}

ShardSelection KeepShard(CollectedCommands& commands, const Shard& shard, const std::optional<UnitPrices>& prices,
                         const RootMark& root) {
    const std::vector<CostKey> keys = KeysOf(commands.units, root);
    const UnitPartition partition =
        prices ? PartitionByPrice(commands.units, shard.count, *prices) : PartitionByHash(keys, shard.count);
    ShardSelection selection = {.shard = shard,
                                .units = {},
                                .allUnits = commands.units.size(),
                                .build = FingerprintOfBuild(commands, keys, root),
                                .compilers = FingerprintOfCompilers(commands.units),
                                .partition = FingerprintOf(partition, shard.count)};
    std::vector<CompileCommand> own;
    for (std::size_t unit = 0; unit < partition.size(); ++unit) {
        if (partition[unit] == shard.number) {
            selection.units.push_back(unit);
            own.push_back(std::move(commands.units[unit]));
        }
    }
    commands.units = std::move(own);
    return selection;
}

} // namespace Orvanta
