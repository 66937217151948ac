#include "settings/AnalysisMode.h"

#include "platform/Exceptions.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <optional>
#include <string>

namespace Orvanta {

namespace {

// One bit for each group; the core takes their sum as a decimal number.
struct GroupRow {
    std::string_view name;
    std::uint8_t mask;
};

// Names regard letter case, all but "all".
constexpr GroupRow Groups[] = {
    {"64", 1}, {"GA", 4}, {"OP", 8}, {"CS", 16}, {"MISRA", 32}, {"AUTOSAR", 64}, {"OWASP", 128},
};
constexpr std::uint8_t AllGroups = 255;

// Throws for a name that means nothing: a group that is left out in silence would be missed by nobody.
std::uint8_t MaskOfGroup(std::string_view name) {
    if (EqualsIgnoringCase(name, "all")) {
        return AllGroups;
    }
    if (const GroupRow* const row = FindRow(Groups, &GroupRow::name, name)) {
        return row->mask;
    }
    throw ZelmException("Wrong diagnostic group name: '" + std::string(name) + "'");
}

} // namespace

std::uint8_t ParseAnalysisMode(std::string_view text) {
    // The group "64" and the number 64 are written alike: the group wins.
    if (const std::optional<int> number = WholeNumber<int>(text); number && *number != 64) {
        if (*number < 1) {
            throw ZelmException("Diagnostic group parameter was entered as number and was non-positive.");
        }
        if (*number > AllGroups) {
            throw ZelmException("Diagnostic group parameter was entered as number and was greater than 255.");
        }
        return static_cast<std::uint8_t>(*number);
    }
    unsigned mask = 0;
    // Empty parts, as a trailing separator leaves them, are passed over; nothing but such parts is an error.
    while (!text.empty()) {
        const std::string_view name = TakeUpTo(text, "+;");
        if (!name.empty()) {
            mask |= MaskOfGroup(name);
        }
    }
    if (mask == 0) {
        throw ZelmException("Diagnostic group name is empty!");
    }
    return static_cast<std::uint8_t>(mask);
}

} // namespace Orvanta
