#pragma once

// How findings are recognised after the code around them has moved.
//
// Not by their line numbers, which change with every edit above. A source line is known by a hash of its text, and the
// text of a message without the numbers in it, which may count lines or sizes.
//
// The hash is short and simple, and stays so: its values stand in bases that people keep for years. Equal hashes alone
// accept nothing: the file's name, the code and the text must agree as well. Rules that change get a version, and old
// bases are matched by their own.

#include <cstdint>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The version of the hashing rules that new bases are made with. Bases below it can be matched, not added to.
inline constexpr std::uint32_t CurrentBaseVersion = 2;

/// The text with each run of digits as "_", each run of white space as one blank, and none at its ends: texts that
/// differ in numbers and spacing only become equal.
[[nodiscard]] std::string NormalizeText(std::string_view text);

/// The hash of a source line by the rules of a base's version. Blanks, tabs and bytes above ASCII don't count, and from
/// version 2 on neither do marks such as "//-V501" at the line's end.
[[nodiscard]] std::uint32_t HashLine(std::string_view line, std::uint32_t version);

} // namespace OrvlogConverter
