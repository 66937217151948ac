#include "settings/SettingsMap.h"

#include <iterator>

namespace Orvanta {

std::optional<std::string> LastValue(const SettingsMap& settings, std::string_view key) {
    // Entries of one key stand in the order of their addition, so the last of them is the last one given.
    const auto [first, end] = settings.equal_range(key);
    if (first == end) {
        return std::nullopt;
    }
    return std::prev(end)->second;
}

bool HasWildcard(std::string_view value) noexcept {
    return value.find_first_of("*?") != std::string_view::npos;
}

} // namespace Orvanta
