#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What becomes of the parts of a preprocessed text; each is handed as it stands between its quotes. An empty function
/// leaves them as they are.
struct TextRewriting {
    std::function<std::string(std::string_view quotedName)> fileName; ///< of a line marker
    std::function<std::string(std::string_view literal)> literal;     ///< of a string, raw strings included
    bool blanksComments = false; ///< a comment keeps its lines and its length, and says nothing
};

/// The text with these parts rewritten, and byte for byte the same otherwise. It is read in one pass, as C and C++ have
/// it: what looks like a marker inside a raw string is none. Text that ends inside a comment or a string is taken as it
/// is.
[[nodiscard]] std::string RewritePreprocessedText(std::string_view text, const TextRewriting& rewriting);

/// Where a file lies that a line marker names, without its escapes: relative names count from `directory`, where the
/// compiler ran, and where there is none, from the folder of the file that names it. Asks the system.
[[nodiscard]] std::string PathOfName(const std::string& name, std::string_view currentFile, std::string_view directory);

/// Whether the name is that of text in no file, such as "<built-in>", or gcc's note of the folder.
[[nodiscard]] bool NamesNoFile(std::string_view name);

/// The paths of all files that the line markers name, and of the source: each once.
[[nodiscard]] std::vector<std::string> FilesNamedByText(std::string_view text, const std::string& sourcePath,
                                                        std::string_view directory);

/// A name of a line marker without the escapes of its quotes and backslashes.
[[nodiscard]] std::string UnescapedName(std::string_view quotedName);

/// A path as it stands between the quotes of a line marker.
[[nodiscard]] std::string EscapedName(std::string_view path);

} // namespace Orvanta
