#pragma once

#include "cppcheck/MarkedText.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A unit's text without that of system headers.
struct CutText {
    std::string text;
    /// The unit's files. The text's line markers name them by `AliasOf`: plain names that need no quoting and mean
    /// nothing on disk.
    std::vector<MarkedFile> files;
};

/// The name under which the text of file number `index` stands in a cut text: "f", the number and the file's extension.
[[nodiscard]] std::string AliasOf(std::size_t index, std::string_view path);

/// The number in such a name; nullopt for any other name.
[[nodiscard]] std::optional<std::size_t> IndexOfAlias(std::string_view alias);

/// Cuts the text of system headers out of a unit's preprocessed text; every line that is left keeps its file and line.
/// The parameters are those of MarkedText.
[[nodiscard]] CutText CutSystemText(std::string_view text, const std::string& sourcePath,
                                    const std::string& currentDirectory);

} // namespace Orvanta
