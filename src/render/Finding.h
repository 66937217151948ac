#pragma once

#include "report/AnalyzerType.h"
#include "report/ReportMessage.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// A message as people know it. The views are into the message.
struct Finding {
    std::string_view rule; ///< the code; for findings of other tools the name that their text opens with in brackets
    std::string_view text; ///< what is wrong, without that name
    std::string_view file; ///< "(no file)" when the message has none
    std::uint32_t line;    ///< at least 1
};

/// The code of a unit that could not be analyzed.
inline constexpr std::string_view FailedUnitCode = "V008";

/// What a message says of its primary position.
[[nodiscard]] Finding FindingOf(const ReportMessage& message) noexcept;

/// Whether a message is about the code, and not about the report itself: neither the link to the documentation nor the
/// notice of an outdated base.
[[nodiscard]] bool IsAboutCode(const ReportMessage& message) noexcept;

/// Whether a message names a file.
[[nodiscard]] bool HasFile(const ReportMessage& message) noexcept;

/// "high", "medium", "low"; "none" for any other level.
[[nodiscard]] std::string_view LevelWord(std::uint32_t level) noexcept;

/// The levels from the worst on: 1, 2, 3, then all others, counted from 0.
[[nodiscard]] std::size_t LevelRank(std::uint32_t level) noexcept;

/// How many answers `LevelRank` has: the size of a table with a row for each.
inline constexpr std::size_t LevelRanks = 4;

/// What people call a group of diagnostics.
/// Never empty: what belongs to none of them is "Other".
[[nodiscard]] std::string_view GroupName(AnalyzerType analyzer) noexcept;

/// The page that describes a code; empty when the documentation has none.
[[nodiscard]] std::string HelpAddress(std::string_view code);

} // namespace OrvlogConverter
