#pragma once

#include <filesystem>
#include <string_view>

namespace Orvanta {

/// A path as the standard library's streams take it, however long it is.
[[nodiscard]] std::filesystem::path NativePath(std::string_view path);

} // namespace Orvanta
