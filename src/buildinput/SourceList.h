#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The source files that the user has listed.
struct SourceList {
    std::vector<std::string> paths; ///< absolute and normalised, in the order of the list
    bool isEmpty = true;            ///< the list names nothing at all
};

/// Reads a list of one path a line. Blanks around a path and blank lines don't count; "#" has no meaning. Relative
/// paths are taken from the current directory; what does not exist is left out. \throws ZelmException with the path of
/// the list and the system's reason
[[nodiscard]] SourceList ReadSourceList(const std::string& path);

/// The paths that the text of a list names, each absolute and normalised.
[[nodiscard]] std::vector<std::string> ParseSourceList(std::string_view text);

} // namespace Orvanta
