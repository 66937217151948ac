#pragma once

#include "bundled/SourceLines.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace Orvanta {

/// Tells lines of a unit's text that stand there as they do in the source from those in which macros were expanded.
/// One thread at a time may use an object.
class WrittenLines {
public:
    /// `cutText` is a unit's, whose markers name files by their aliases. Both must outlive the object.
    WrittenLines(std::string_view cutText, SourceLines& sources) : cutText_(cutText), sources_(sources) {}

    /// Whether the line of the file at `path` is as its writer wrote it. So is a line whose source can't be read. The
    /// constants that every program uses (`NULL`, `nullptr`, `true`, `false`) count as written.
    [[nodiscard]] bool IsAsWritten(const std::string& path, std::uint32_t line);

    /// Whether besides no macro of a system header has left a piece of its own in it, and it is no directive, which the
    /// preprocessor has taken out.
    [[nodiscard]] bool IsWholeAsWritten(const std::string& path, std::uint32_t line);

    /// Whether a statement expression of GCC, "({ ... })", begins in the line, as macros make them.
    [[nodiscard]] bool HoldsStatementExpression(const std::string& path, std::uint32_t line);

private:
    using FileLine = std::pair<std::uint64_t, std::uint32_t>;

    // Made for the first line that is asked for: most units need none.
    void IndexLines();

    std::string_view cutText_;
    SourceLines& sources_;
    std::map<FileLine, std::string_view> textByLine_; // of the cut text, by a file's key and its line
    std::set<FileLine> inPieces_;                     // those that stand there in several pieces
    bool isIndexed_ = false;
};

} // namespace Orvanta
