#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// The known key that `key` is most like, where it is none itself but so near to one that it must be a slip: a letter
/// too many, one missing, two swapped, "_" for "-". Empty for a known key, and for one that only a core may know.
[[nodiscard]] std::string_view MeantKey(std::string_view key);

/// The warning about such a key of a settings file; empty when there is nothing to say.
[[nodiscard]] std::string KeyWarning(const std::string& path, std::string_view key);

} // namespace Orvanta
