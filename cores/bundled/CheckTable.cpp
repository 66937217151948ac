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

// What one check tells of faults of different weight. Clang's of memory tells twice freed, freed and used, and lost;
// its of streams tells closed or lost ones, and that one is read on at its end, or after an error that nobody has seen.
// A function that may return a null pointer is asked for what is there by most of its callers, and by all tests. What
// std::move returns may be called at once, which Cppcheck does not see.
struct MessageLevel {
    std::string_view id;
    std::string_view severity; // empty: any
    std::string_view begin;    // of the message
    std::uint32_t level;
};

constexpr MessageLevel MessageLevels[] = {
    {"clang-analyzer-alpha.unix.Stream", "", "File position of the stream might be 'indeterminate'", 3},
    {"clang-analyzer-alpha.unix.Stream", "", "Read function called when stream is in EOF state", 3},
    {"clang-analyzer-unix.Malloc", "", "Potential leak", 2},
    {"ctunullpointer", "warning", "Null pointer dereference: what ", 3},
    {"ignoredReturnValue", "", "Return value of function std::move() is not used", 3},
};

std::uint32_t LevelOf(const Finding& finding, const CheckRow& row) {
    for (const MessageLevel& special : MessageLevels) {
        if (special.id == finding.id && finding.message.starts_with(special.begin) &&
            (special.severity.empty() || special.severity == finding.severity)) {
            return special.level;
        }
    }
    // Of one kind of fault, Cppcheck calls those a warning that depend on a condition which may never hold.
    return finding.severity == "warning" ? std::max(row.level, LevelOfWarnings) : row.level;
}

} // namespace

const CheckRow* FindCheck(std::string_view id) {
    const CheckRow* const row = FindIn(CppcheckChecks(), id);
    return row != nullptr ? row : FindIn(ClangChecks(), id);
}

CheckRow RowFor(const Finding& finding) {
    if (const CheckRow* const known = FindCheck(finding.id)) {
        CheckRow row = *known;
        row.level = LevelOf(finding, row);
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
