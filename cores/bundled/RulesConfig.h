#pragma once

#include "bundled/CheckTable.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// What a user's files of rules (`.orvconfig`) change about checks, by their identifiers.
struct CheckRules {
    struct Rule {
        std::optional<CheckState> state; ///< On or Off; empty for what it is anyway
        std::uint32_t level = 0;         ///< 0 for what it is anyway

        bool operator==(const Rule&) const = default;
    };

    std::map<std::string, Rule, std::less<>> byCheck;

    /// Whether a rule says that a check is not to be told of.
    [[nodiscard]] bool SwitchesOff(std::string_view id) const;

    /// Changes the row of a finding's check as the rules say.
    void ApplyTo(CheckRow& row) const;

    bool operator==(const CheckRules&) const = default;
};

/// Reads the rules that stand in the file at `path`, one a line: `disable=ID`, `enable=ID`, `level:ID=N`. Lines that
/// begin with "#" and empty ones say nothing. Of several rules about one thing the last one counts, also over those of
/// an earlier file, which `rules` holds.
/// \throws ZelmException naming the file and the line that is none of these, or names no check or level
void ReadRules(const std::string& path, CheckRules& rules);

} // namespace Orvanta
