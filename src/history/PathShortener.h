#pragma once

#include "platform/OnceMap.h"

#include <string>

namespace Orvanta {

/// Takes the ".." out of paths where they lead to the same file without. Behind a link they do not: the system goes up
/// from where the link leads to. Text alone can't tell, so each folder is asked for once; without any of it, a header
/// would be a file of its own for each folder from which a unit names it. Any thread may ask.
class PathShortener {
public:
    /// `path` is absolute.
    [[nodiscard]] std::string Shorten(const std::string& path);

private:
    OnceMap<std::string> folders_;
};

} // namespace Orvanta
