#pragma once

#include <cstdint>
#include <string>

namespace Orvanta {

/// One of the parts that a run is cut into: number K of N, from 1.
struct Shard {
    std::uint32_t number = 1;
    std::uint32_t count = 1;

    friend bool operator==(const Shard&, const Shard&) = default;
};

/// The most shards that a run can have.
inline constexpr std::uint32_t MostShards = 100'000;

/// Reads "K/N".
/// \throws ZelmException for anything else, and unless 1 <= K <= N
[[nodiscard]] Shard ParseShard(const std::string& text);

/// The shard as "K/N".
[[nodiscard]] std::string ShardText(const Shard& shard);

} // namespace Orvanta
