#pragma once

#include <string>

namespace Orvanta {

/// The path that the links at the end of `path` lead to, whether something is there or not; `path` itself when it is no
/// link. Links in the folders on the way stay.
/// \throws FileException when the links go in a circle
[[nodiscard]] std::string EndOfLinks(std::string path);

} // namespace Orvanta
