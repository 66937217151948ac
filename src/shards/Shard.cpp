#include "shards/Shard.h"

#include "platform/Exceptions.h"
#include "platform/Text.h"

#include <string_view>

namespace Orvanta {

Shard ParseShard(const std::string& text) {
    std::string_view rest = text;
    const std::string_view number = TakeUpTo(rest, "/");
    const auto own = WholeNumber<std::uint32_t>(number);
    const auto count = WholeNumber<std::uint32_t>(rest);
    if (!own || !count || *own < 1 || *own > *count || *count > MostShards) {
        throw ZelmException("Wrong value of --shard: \"" + text + "\", expected K/N with K from 1 to N and N up to " +
                            std::to_string(MostShards));
    }
    return {*own, *count};
}

std::string ShardText(const Shard& shard) {
    return std::to_string(shard.number) + "/" + std::to_string(shard.count);
}

} // namespace Orvanta
