#include "bundled/WrittenLines.h"

#include "bundled/FileAlias.h"
#include "platform/LineMarker.h"
#include "platform/Text.h"

#include <optional>

namespace Orvanta {

namespace {

struct Spelling {
    std::string_view text;
    std::string_view common;
};

// What the constants of the language look like before and behind the preprocessor, without blanks.
constexpr Spelling Spellings[] = {
    {"((void*)0)", "0"}, {"__null", "0"}, {"nullptr", "0"}, {"NULL", "0"}, {"true", "1"}, {"false", "0"},
};

void ReplaceAll(std::string& text, const Spelling& spelling) {
    for (std::size_t at = text.find(spelling.text); at != std::string::npos; at = text.find(spelling.text, at)) {
        text.replace(at, spelling.text.size(), spelling.common);
    }
}

std::size_t EndOfQuoted(std::string_view line, std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < line.size() && line[end] != line[begin]) {
        end += line[end] == '\\' ? 2U : 1U;
    }
    return std::min(end + 1, line.size());
}

// The code of a line without its blanks and comments.
std::string CodeOf(std::string_view line) {
    std::string code;
    for (std::size_t i = 0; i < line.size();) {
        const std::string_view rest = line.substr(i);
        if (rest.starts_with("//")) {
            break;
        }
        if (rest.starts_with("/*")) {
            const std::size_t end = rest.find("*/", 2);
            i = end == std::string_view::npos ? line.size() : i + end + 2;
        } else if (rest[0] == '"' || rest[0] == '\'') {
            const std::size_t end = EndOfQuoted(line, i);
            code.append(line.substr(i, end - i));
            i = end;
        } else {
            if (!IsWhiteSpace(rest[0])) {
                code += rest[0];
            }
            ++i;
        }
    }
    for (const Spelling& spelling : Spellings) {
        ReplaceAll(code, spelling);
    }
    return code;
}

} // namespace

bool WrittenLines::IsAsWritten(const std::string& path, std::uint32_t line) {
    IndexLines();
    const auto text = textByLine_.find({FileKey(path), line});
    const std::string source = CodeOf(sources_.At(path, line).currLine);
    if (text == textByLine_.end() || source.empty()) {
        return true;
    }
    // The one may end earlier than the other: where a parenthesis is open, lines are joined, and a line may be broken.
    const std::string code = CodeOf(text->second);
    return code.starts_with(source) || source.starts_with(code);
}

bool WrittenLines::IsWholeAsWritten(const std::string& path, std::uint32_t line) {
    return IsAsWritten(path, line) && !inPieces_.contains({FileKey(path), line}) &&
           !CodeOf(sources_.At(path, line).currLine).starts_with('#');
}

bool WrittenLines::HoldsStatementExpression(const std::string& path, std::uint32_t line) {
    IndexLines();
    const auto text = textByLine_.find({FileKey(path), line});
    return text != textByLine_.end() && CodeOf(text->second).find("({") != std::string::npos;
}

void WrittenLines::IndexLines() {
    if (isIndexed_) {
        return;
    }
    isIndexed_ = true;
    FileLine place;
    for (std::string_view rest = cutText_; !rest.empty();) {
        const std::string_view line = TakeLine(rest);
        if (const auto marker = ReadLineMarker(line)) {
            place = {KeyOfAlias(marker->quotedName).value_or(0), marker->line};
            continue;
        }
        // Of two pieces of one line, the first one tells.
        if (!textByLine_.emplace(place, line).second) {
            inPieces_.insert(place);
        }
        ++place.second;
    }
}

} // namespace Orvanta
