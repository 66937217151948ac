#pragma once

#include <algorithm>
#include <iterator>

namespace Orvanta {

/// The first row of a table whose `member` is equal to `key`; null when there is none. Points into the table.
template <typename Rows, typename Row, typename Member, typename Key>
[[nodiscard]] constexpr const Row* FindRow(const Rows& rows, Member Row::*member, const Key& key) {
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.*member == key; });
    return found == std::end(rows) ? nullptr : &*found;
}

} // namespace Orvanta
