#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

// Cut texts name a file by an alias: a plain name that needs no quoting, means nothing on disk, and is the same in
// every unit. Cppcheck tells by it what several units share.

/// A number that stands for the path of a file, in any spelling that the host's system takes for the same.
[[nodiscard]] std::uint64_t FileKey(std::string_view path);

/// The name of a file in a cut text: "f", the file's key and its extension.
[[nodiscard]] std::string AliasOf(std::string_view path);

/// The key of the file that such a name stands for; nullopt for any other name.
[[nodiscard]] std::optional<std::uint64_t> KeyOfAlias(std::string_view alias);

} // namespace Orvanta
