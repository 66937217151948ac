#pragma once

#include "bundled/MarkedText.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Where a line of a text for clang comes from.
struct TextLine {
    std::size_t file = 0; ///< index into the unit's files
    std::uint32_t line = 0;
    std::size_t begin = 0; ///< where it stands in the text for clang
};

/// A unit's text as clang-tidy can read it: as a source that holds all that it includes. It tells places by the lines
/// of this text, and nothing of what is marked as that of system headers.
struct ClangText {
    std::string text;
    std::vector<TextLine> lines;   ///< of each line of the text, from its first
    std::vector<MarkedFile> files; ///< the unit's files

    /// The place of a line, from 1, by the alias of its file; the source's first line for one that is not there.
    [[nodiscard]] TextLine PlaceOf(std::size_t line) const;

    /// What stands from a column of a line on, both counted from 1; empty for a place that is not there.
    [[nodiscard]] std::string_view From(std::size_t line, std::size_t column) const;
};

/// Makes the text out of a unit's preprocessed one. Code of GCC's own headers that clang can't read is replaced by what
/// means the same to it. The parameters are those of MarkedText.
[[nodiscard]] ClangText MakeClangText(std::string_view text, const std::string& sourcePath,
                                      const std::string& currentDirectory);

} // namespace Orvanta
