#include "bundled/SourceMarks.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

// Where the first comment of the line begins; its end when there is none.
std::size_t CommentBegin(std::string_view line) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (line[i] == '"' || line[i] == '\'') {
            const char quote = line[i];
            for (++i; i < line.size() && line[i] != quote; ++i) {
                i += line[i] == '\\' ? 1U : 0U;
            }
        } else if (line[i] == '/' && (line[i + 1] == '/' || line[i + 1] == '*')) {
            return i;
        }
    }
    return line.size();
}

constexpr std::string_view ListSeparators = " \t,[]():*/";

// With a star at its end, an entry stands for all identifiers that begin like it.
bool IsNamedBy(std::string_view entry, std::string_view id) {
    return entry.ends_with('*') ? id.starts_with(entry.substr(0, entry.size() - 1)) : entry == id;
}

bool IsAnyNamedBy(std::string_view entry, std::span<const std::string> ids) {
    return std::any_of(ids.begin(), ids.end(), [entry](const std::string& id) { return IsNamedBy(entry, id); });
}

// Whether one of the entries in `list`, which commas separate, names one of the checks.
bool ListNames(std::string_view list, std::span<const std::string> ids) {
    while (!list.empty()) {
        if (IsAnyNamedBy(Trim(TakeUpTo(list, ",")), ids)) {
            return true;
        }
    }
    return false;
}

// The text between the parentheses or brackets that `text` begins with, and what it is without any.
std::string_view Enclosed(std::string_view text, char open, char close) {
    return text.starts_with(open) ? text.substr(1, text.find(close) - 1) : std::string_view();
}

bool HidesByCppcheckMark(std::string_view comment, std::span<const std::string> ids) {
    constexpr std::string_view Mark = "cppcheck-suppress";
    const std::size_t at = comment.find(Mark);
    if (at == std::string_view::npos) {
        return false;
    }
    const std::string_view rest = Trim(comment.substr(at + Mark.size()));
    if (rest.starts_with('[')) {
        return ListNames(Enclosed(rest, '[', ']'), ids);
    }
    return IsAnyNamedBy(rest.substr(0, rest.find_first_of(ListSeparators)), ids);
}

bool HidesByLintMark(std::string_view comment, std::string_view mark, std::span<const std::string> ids) {
    for (std::size_t at = comment.find(mark); at != std::string_view::npos; at = comment.find(mark, at + 1)) {
        const std::string_view rest = comment.substr(at + mark.size());
        // NOLINTNEXTLINE, NOLINTBEGIN and the like are other marks.
        if (rest.empty() || rest[0] < 'A' || rest[0] > 'Z') {
            return !rest.starts_with('(') || ListNames(Enclosed(rest, '(', ')'), ids);
        }
    }
    return false;
}

bool HidesByOwnMark(std::string_view comment, std::span<const std::string> ids, std::string_view code) {
    constexpr std::string_view Mark = "//-V";
    for (std::size_t at = comment.find(Mark); at != std::string_view::npos; at = comment.find(Mark, at + 1)) {
        const std::string_view rest = comment.substr(at + Mark.size());
        const std::string_view word = rest.substr(0, rest.find_first_of(" \t/"));
        if (word.starts_with(':') ? ListNames(word.substr(1), ids)
                                  : !word.empty() && (word == code || "V" + std::string(word) == code)) {
            return true;
        }
    }
    return false;
}

bool HidesByComment(std::string_view comment, std::span<const std::string> ids, std::string_view code) {
    return HidesByLintMark(comment, "NOLINT", ids) || HidesByCppcheckMark(comment, ids) ||
           HidesByOwnMark(comment, ids, code);
}

} // namespace

bool IsHiddenByMark(std::string_view line, std::string_view lineAbove, std::span<const std::string> ids,
                    std::string_view code) {
    const std::size_t above = CommentBegin(lineAbove);
    const std::string_view commentAbove = lineAbove.substr(above);
    // What stands behind code is said of that code.
    const bool isAlone = Trim(lineAbove.substr(0, above)).empty();
    return HidesByComment(line.substr(CommentBegin(line)), ids, code) ||
           HidesByLintMark(commentAbove, "NOLINTNEXTLINE", ids) || (isAlone && HidesByComment(commentAbove, ids, code));
}

bool SaysFallThrough(std::string_view line) {
    const std::string_view comment = line.substr(CommentBegin(line));
    const std::string lower = ToLowerAscii(comment);
    const std::size_t falls = lower.find("fall");
    return falls != std::string::npos && lower.find("thr", falls) != std::string::npos;
}

} // namespace Orvanta
