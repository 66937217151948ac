#include "buildinput/VariableName.h"

#include <algorithm>

namespace Orvanta {

bool IsVariableName(std::string_view name) noexcept {
    const auto isNameCharacter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    return !name.empty() && std::all_of(name.begin(), name.end(), isNameCharacter);
}

} // namespace Orvanta
