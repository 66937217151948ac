#include "settings/AnalysisMode.h"

#include "platform/Exceptions.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

namespace Orvanta {

namespace {

struct GroupRow {
    std::string_view name;
    std::uint8_t mask;
};

// Names regard letter case, all but "all".
constexpr GroupRow Groups[] = {
    {"64",      1  },
    {"GA",      4  },
    {"OP",      8  },
    {"CS",      16 },
    {"MISRA",   32 },
    {"AUTOSAR", 64 },
    {"OWASP",   128},
};
constexpr std::uint8_t AllGroups = 255;

std::optional<int> AsNumber(std::string_view text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

std::uint8_t MaskOfGroup(std::string_view name) {
    if (EqualsIgnoringCase(name, "all")) {
        return AllGroups;
    }
    for (const GroupRow& row : Groups) {
        if (row.name == name) {
            return row.mask;
        }
    }
    throw ZelmException("Wrong diagnostic group name: '" + std::string(name) + "'");
}

} // namespace

std::uint8_t ParseAnalysisMode(std::string_view text) {
    // The group "64" and the number 64 are written alike: the group wins.
    if (const std::optional<int> number = AsNumber(text); number && *number != 64) {
        if (*number < 1) {
            throw ZelmException("Diagnostic group parameter was entered as number and was non-positive.");
        }
        if (*number > AllGroups) {
            throw ZelmException("Diagnostic group parameter was entered as number and was greater than 255.");
        }
        return static_cast<std::uint8_t>(*number);
    }
    unsigned mask = 0;
    while (!text.empty()) {
        const std::string_view name = text.substr(0, text.find_first_of("+;"));
        if (!name.empty()) {
            mask |= MaskOfGroup(name);
        }
        text.remove_prefix(std::min(name.size() + 1, text.size()));
    }
    if (mask == 0) {
        throw ZelmException("Diagnostic group name is empty!");
    }
    return static_cast<std::uint8_t>(mask);
}

} // namespace Orvanta
