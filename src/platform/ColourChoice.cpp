#include "platform/ColourChoice.h"

#include <cstdlib>
#include <string_view>

namespace Orvanta {

namespace {

// An empty variable counts as none, as both customs have it.
bool IsSet(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

} // namespace

std::optional<bool> ColoursAskedFor() {
    // Asked first: whoever sets both may not be able to stand colours.
    if (IsSet("NO_COLOR")) {
        return false;
    }
    if (IsSet("CLICOLOR_FORCE") && std::string_view(std::getenv("CLICOLOR_FORCE")) != "0") {
        return true;
    }
    return std::nullopt;
}

} // namespace Orvanta
