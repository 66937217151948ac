#pragma once

#include "cppcheck/MarkedText.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A unit's text without that of system headers.
struct CutText {
    std::string text;              ///< its line markers name files by their aliases
    std::vector<MarkedFile> files; ///< the unit's files
};

/// Cuts the text of system headers out of a unit's preprocessed text; every line that is left keeps its file and line.
/// The parameters are those of MarkedText.
[[nodiscard]] CutText CutSystemText(std::string_view text, const std::string& sourcePath,
                                    const std::string& currentDirectory);

} // namespace Orvanta
