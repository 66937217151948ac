#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Orvanta {

/// A path as the standard library's streams take it, however long it is and whatever characters it holds.
[[nodiscard]] std::filesystem::path NativePath(std::string_view path);

/// The text of such a path.
[[nodiscard]] std::string PathText(const std::filesystem::path& path);

} // namespace Orvanta
