#pragma once

#include "bundled/MarkedText.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A piece of a line that a macro of a system header has written.
struct SystemMacroText {
    std::size_t file = 0; ///< index into the unit's files
    std::uint32_t line = 0;
    std::uint32_t begin = 0; ///< its first column in the cut text, counted in bytes from 1
    std::uint32_t end = 0;   ///< the column behind its last

    bool operator==(const SystemMacroText&) const = default;
};

/// A unit's text without that of system headers.
struct CutText {
    std::string text;                          ///< its line markers name files by their aliases
    std::vector<MarkedFile> files;             ///< the unit's files
    std::vector<SystemMacroText> systemMacros; ///< by file and line
};

/// Cuts the text of system headers out of a unit's preprocessed text; every line that is left keeps its file and line.
/// Compilers break a line where text of a macro begins and ends: it becomes one line again. Cppcheck takes no line
/// marker between the parentheses of a call that is a macro to it, so none is written while a parenthesis is open
/// unless the file changes; text of an earlier line then stands in the line that the text has come to.
/// The parameters are those of MarkedText.
[[nodiscard]] CutText CutSystemText(std::string_view text, const std::string& sourcePath,
                                    const std::string& currentDirectory);

} // namespace Orvanta
