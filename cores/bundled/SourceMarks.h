#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// Whether a mark in the comments of a line hides a finding in it, or in the line below, whose checks are `ids` and
/// whose code is `code`. The marks are `cppcheck-suppress ID`, `NOLINT` and `NOLINT(ID)`, and `-V:ID` and `-V` with a
/// code, where ID may be a list; those about the line below are the same in a line without code, and
/// `NOLINTNEXTLINE`.
/// `line` is the finding's own line of the source, `lineAbove` the one before it; either may be empty.
[[nodiscard]] bool IsHiddenByMark(std::string_view line, std::string_view lineAbove, std::span<const std::string> ids,
                                  std::string_view code);

/// Whether a comment of the line says that one branch is meant to go on in the next: by the words that compilers look
/// for too.
[[nodiscard]] bool SaysFallThrough(std::string_view line);

} // namespace Orvanta
