#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// The absolute path of the first executable file named `program` in the folders of `searchPath`, separated by ":";
/// empty when there is none. An empty or relative folder is one of `directory`, which itself is one of the current
/// directory when it is empty or relative.
[[nodiscard]] std::string FindAlong(std::string_view program, std::string_view searchPath,
                                    const std::string& directory);

} // namespace Orvanta
