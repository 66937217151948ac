#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Whoever asks about one file of a build with a hundred thousand entries does not want to wait until a parser has gone
// through all of them. So the text of a database is cut into its entries, which takes no more than to find its quotes
// and brackets, and only those entries are parsed in which the file may stand.

namespace Orvanta {

/// An entry of a compilation database, as it stands in the file.
struct DatabaseEntry {
    std::size_t number = 0; ///< in the database, from 1
    std::size_t line = 0;   ///< on which it begins, from 1
    std::string text;       ///< an object of JSON
};

/// The entries whose text `wants` takes, in their order; one entry at a time is in memory. Absent when the text is no
/// array, or ends within one: then a reader of the whole says what is wrong. What lies between the brackets of the
/// others is not checked.
[[nodiscard]] std::optional<std::vector<DatabaseEntry>>
PickEntries(std::istream& input, const std::function<bool(std::string_view text)>& wants);

} // namespace Orvanta
