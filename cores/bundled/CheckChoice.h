#pragma once

#include "bundled/CheckTable.h"
#include "bundled/RulesConfig.h"

#include <cstdint>

namespace Orvanta {

/// Which checks a user wants to hear of.
struct CheckChoice {
    std::uint8_t groups = static_cast<std::uint8_t>(CheckGroup::General); ///< those chosen, as a sum of their bits
    bool all = false;      ///< also checks that are off, and everywhere; but not those that a rule switches off
    CheckRules rules = {}; ///< the user's own

    [[nodiscard]] bool Has(CheckGroup group) const noexcept { return (groups & static_cast<std::uint8_t>(group)) != 0; }

    bool operator==(const CheckChoice&) const = default;
};

} // namespace Orvanta
