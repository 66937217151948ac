#pragma once

#include <algorithm>
#include <functional>
#include <iterator>

namespace Orvanta {

/// The first row of a table whose `member` is equal to `key`, as `isEqual(key, member)` has it; null when there is
/// none. Points into the table.
template <typename Rows, typename Row, typename Member, typename Key, typename Equal = std::equal_to<>>
[[nodiscard]] constexpr const Row* FindRow(const Rows& rows, Member Row::*member, const Key& key, Equal isEqual = {}) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return isEqual(key, row.*member); });
    return found == std::end(rows) ? nullptr : &*found;
}

} // namespace Orvanta
