#pragma once

#include "bundled/Finding.h"

#include <cstdint>
#include <span>
#include <string_view>

// What is known of each check of the engines. An engine's own severity says how sure it is of a kind of fault in a text
// that a person wrote; here the text went through a preprocessor, and a person reads the first pages of a report only.
// So each check was looked at for three questions: what happens where it is right (the level), which of the groups that
// `-a` names asks for it, and whether it is right of text that macros have written (the state).

namespace Orvanta {

/// The groups that a user chooses from, as bits of the key `analysis-mode`.
enum class CheckGroup : std::uint8_t {
    Widths = 1,  ///< "64": sizes of types
    General = 4, ///< "GA": faults, and what looks like one
    Speed = 8,   ///< "OP": what could be faster
    Misra = 32,  ///< "MISRA"
};

/// Where findings of a check are told by default.
enum class CheckState : std::uint8_t {
    On,        ///< everywhere
    AsWritten, ///< only in lines that stand in the text as they do in the source: in others, macros are what is found
    BlockAsWritten, ///< likewise, of each line from the first place that the finding names to its own
    Off,            ///< nowhere: a matter of taste, or wrong without the rest of the program
};

/// What is known of a check.
struct CheckRow {
    std::string_view id;
    std::uint32_t level = 3; ///< 1: certain or dangerous, 2: probable, 3: style and portability
    CheckGroup group = CheckGroup::General;
    CheckState state = CheckState::On;
    std::uint32_t cwe = 0; ///< for engines that tell none; 0 when there is none
};

/// The checks of Cppcheck, in ascending order of their identifiers.
[[nodiscard]] std::span<const CheckRow> CppcheckChecks();

/// Those that clang-tidy runs, in the same order.
[[nodiscard]] std::span<const CheckRow> ClangChecks();

/// The row of a check; null for one that no row is about, such as one of a newer engine.
[[nodiscard]] const CheckRow* FindCheck(std::string_view id);

/// The row that counts for a finding: that of its check, with a level that its severity allows, or what its severity
/// alone tells.
[[nodiscard]] CheckRow RowFor(const Finding& finding);

} // namespace Orvanta
