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

/// What a file's name in a cut text stands for.
struct AliasedFile {
    std::size_t index = 0; ///< into `CutText::files`
    TextOrigin origin = TextOrigin::File;

    bool operator==(const AliasedFile&) const = default;
};

/// The name of a file in a cut text: "f" (or "s", for text of system macros in it), the file's number and its
/// extension.
[[nodiscard]] std::string AliasOf(AliasedFile file, std::string_view path);

/// What such a name stands for; nullopt for any other name.
[[nodiscard]] std::optional<AliasedFile> ReadAlias(std::string_view alias);

/// Cuts the text of system headers out of a unit's preprocessed text; every line that is left keeps its file and line.
/// The parameters are those of MarkedText.
[[nodiscard]] CutText CutSystemText(std::string_view text, const std::string& sourcePath,
                                    const std::string& currentDirectory);

} // namespace Orvanta
