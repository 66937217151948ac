#include "bundled/CheckTable.h"

#include "bundled/Misra.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::uint32_t LevelOfWarnings = 2;

const CheckRow* FindIn(std::span<const CheckRow> rows, std::string_view id) {
    const auto row = std::lower_bound(rows.begin(), rows.end(), id,
                                      [](const CheckRow& left, std::string_view right) { return left.id < right; });
    return row != rows.end() && row->id == id ? &*row : nullptr;
}

} // namespace

const CheckRow* FindCheck(std::string_view id) {
    const CheckRow* const row = FindIn(CppcheckChecks(), id);
    return row != nullptr ? row : FindIn(ClangChecks(), id);
}

CheckRow RowFor(const Finding& finding) {
    if (const CheckRow* const known = FindCheck(finding.id)) {
        CheckRow row = *known;
        // Of one kind of fault, Cppcheck calls those a warning that depend on a condition which may never hold.
        if (finding.severity == "warning") {
            row.level = std::max(row.level, LevelOfWarnings);
        }
        return row;
    }
    CheckRow row;
    row.id = finding.id;
    if (const std::string_view rule = MisraRuleOf(finding.id); !rule.empty()) {
        row.group = CheckGroup::Misra;
        row.state = IsJudged(rule) ? CheckState::On : CheckState::Off;
        return row;
    }
    if (finding.severity == "error") {
        row.level = 1;
    } else if (finding.severity == "warning") {
        row.level = LevelOfWarnings;
    } else if (finding.severity == "performance") {
        row.group = CheckGroup::Speed;
    } else if (finding.severity == "portability") {
        row.group = CheckGroup::Widths;
    }
    return row;
}

} // namespace Orvanta
