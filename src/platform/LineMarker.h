#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// A file name with those escapes of quotes and backslashes.
[[nodiscard]] std::string QuotedName(std::string_view name);

/// Whether a name in a marker is that of text in no file, such as "<built-in>", or gcc's note of the folder.
[[nodiscard]] bool NamesNoFile(std::string_view name) noexcept;

/// Where a file lies that a marker names: a relative name counts from `directory`, where the compiler ran, and where
/// there is none, from the folder of the file that names it. Asks the system.
[[nodiscard]] std::string PathOfName(const std::string& name, std::string_view currentFile, std::string_view directory);

/// What becomes of files that a compiler took for system headers.
enum class SystemHeaders { Taken, LeftOut };

/// The paths of the files that the markers of a text name, each once, in the order in which they are first named,
/// behind that of the source. A raw string that holds what looks like a marker may add one.
[[nodiscard]] std::vector<std::string> FilesNamedByMarkers(std::string_view text, const std::string& sourcePath,
                                                           std::string_view directory, SystemHeaders systemHeaders);

} // namespace Orvanta
