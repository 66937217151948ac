#pragma once

// Settings as they travel: from a settings file and the command line to the run, and from the run to the core.
//
// The form is the file's own, a sorted list of keys and values in which a key may stand several times, because the core
// reads back what a person may have written: what we don't know passes through unchanged. What the run itself looks at
// is taken out once, into RunSettings, where it has types.

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// Settings by key, in ascending byte order; entries of equal keys keep the order in which they were added.
using SettingsMap = std::multimap<std::string, std::string, std::less<>>;

/// The key of the folder that the report leaves out of paths.
inline constexpr const char* SourceTreeRootKey = "sourcetree-root";

/// The last value added under a key: of settings that can stand only once, the last one given counts.
[[nodiscard]] std::optional<std::string> LastValue(const SettingsMap& settings, std::string_view key);

/// Whether a value is a path mask: it holds "*" or "?".
[[nodiscard]] bool HasWildcard(std::string_view value) noexcept;

} // namespace Orvanta
