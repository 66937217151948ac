#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The text with "?" for all that would do something to a terminal, and for what is no UTF-8.
[[nodiscard]] std::string TextForTerminal(std::string_view text);

/// How many columns of a terminal a text takes that TextForTerminal has made. Never less than it takes: sequences of
/// characters that a terminal draws as one count each.
[[nodiscard]] std::size_t ColumnsOf(std::string_view text);

/// The longest end of such a text that takes no more than so many columns, of whole characters with their marks.
[[nodiscard]] std::string_view LastColumns(std::string_view text, std::size_t columns);

} // namespace OrvlogConverter
