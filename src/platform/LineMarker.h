#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// A line of preprocessed text that says which file and line the text below it comes from.
struct LineMarker {
    std::uint32_t line = 0;
    std::string_view quotedName; ///< as it stands between the quotes; empty when the file stays the same
    bool entersFile = false;     ///< flag 1: an included file begins
    bool isSystemHeader = false; ///< flag 3
};

/// Reads `# 12 "file" 1 3` (gcc, clang) and `#line 12 "file"` (others); nullopt for any other line.
[[nodiscard]] std::optional<LineMarker> ReadLineMarker(std::string_view line);

/// A file name without the escapes of a line marker: `\\`, `\"` and three octal digits.
[[nodiscard]] std::string UnquotedName(std::string_view quotedName);

} // namespace Orvanta
