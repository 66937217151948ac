#include "analysis/TextRewriting.h"

#include "platform/LineMarker.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>

namespace Orvanta {

namespace {

bool IsWordCharacter(char character) {
    const char lower = ToLowerAscii(character);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z') || character == '_';
}

class Rewriter {
public:
    Rewriter(std::string_view text, const TextRewriting& rewriting) : text_(text), rewriting_(rewriting) {
        result_.reserve(text.size());
    }

    std::string Run() {
        bool isLineStart = true;
        while (at_ < text_.size()) {
            if (isLineStart) {
                TakeMarker();
            }
            // Nearly all of a text is none of these.
            const std::size_t next = text_.find_first_of("\"'/\n", at_);
            Copy(std::min(next, text_.size()) - at_);
            isLineStart = at_ < text_.size() && text_[at_] == '\n';
            TakeNext();
        }
        return std::move(result_);
    }

private:
    void Copy(std::size_t size) {
        result_ += text_.substr(at_, size);
        at_ += std::min(size, text_.size() - at_);
    }

    void CopyThrough(std::size_t end) { Copy(end == std::string_view::npos ? text_.size() - at_ : end - at_); }

    void TakeMarker() {
        const std::string_view line = text_.substr(at_, text_.find('\n', at_) - at_);
        const std::optional<LineMarker> marker = ReadLineMarker(line);
        if (!marker || marker->quotedName.empty()) {
            return;
        }
        if (rewriting_.fileName) {
            Copy(static_cast<std::size_t>(marker->quotedName.data() - line.data()));
            result_ += rewriting_.fileName(marker->quotedName);
            at_ += marker->quotedName.size();
        }
        // Else its quotes would pass for a string.
        CopyThrough(text_.find('\n', at_));
    }

    // What begins at a character that may mean more than itself.
    void TakeNext() {
        const std::string_view rest = text_.substr(at_);
        if (rest.starts_with("/*")) {
            TakeComment(rest.find("*/", 2), 2);
        } else if (rest.starts_with("//")) {
            TakeComment(EndOfLine(rest), 0);
        } else if (rest.starts_with('"')) {
            TakeString();
        } else if (rest.starts_with('\'') && !IsInNumber()) {
            CopyThrough(EndOfQuoted('\''));
        } else {
            Copy(1);
        }
    }

    // Behind a backslash the comment goes on.
    static std::size_t EndOfLine(std::string_view rest) {
        std::size_t end = rest.find('\n');
        while (end != std::string_view::npos && rest[end - 1] == '\\') {
            end = rest.find('\n', end + 1);
        }
        return end;
    }

    void TakeComment(std::size_t end, std::size_t closing) {
        const std::size_t size = (end == std::string_view::npos ? text_.size() - at_ : end + closing);
        if (!rewriting_.blanksComments || end == std::string_view::npos) {
            Copy(size);
            return;
        }
        Copy(2);
        BlankOut(size - 2 - closing);
        Copy(closing);
    }

    void BlankOut(std::size_t size) {
        for (const char character : text_.substr(at_, size)) {
            const bool isShape = character == '\n' || character == '\r' || character == '\\';
            result_ += isShape ? character : ' ';
        }
        at_ += size;
    }

    // "1'000" is a number; "u'x'" is not.
    [[nodiscard]] bool IsInNumber() const {
        std::size_t begin = at_;
        while (begin > 0 && (IsWordCharacter(text_[begin - 1]) || text_[begin - 1] == '\'')) {
            --begin;
        }
        return begin < at_ && IsDigit(text_[begin]);
    }

    // Behind the closing quote; of a quote that is not closed in its line, the end of that line.
    [[nodiscard]] std::size_t EndOfQuoted(char quote) const {
        for (std::size_t at = at_ + 1; at < text_.size(); ++at) {
            if (text_[at] == '\\') {
                ++at;
            } else if (text_[at] == quote) {
                return at + 1;
            } else if (text_[at] == '\n') {
                return at;
            }
        }
        return text_.size();
    }

    [[nodiscard]] bool IsRawString() const {
        std::size_t begin = at_;
        while (begin > 0 && IsWordCharacter(text_[begin - 1])) {
            --begin;
        }
        const std::string_view prefix = text_.substr(begin, at_ - begin);
        return prefix == "R" || prefix == "LR" || prefix == "uR" || prefix == "UR" || prefix == "u8R";
    }

    void TakeString() {
        std::size_t opening = 1;
        std::size_t closing = 1;
        std::size_t end = EndOfQuoted('"');
        if (IsRawString()) {
            opening = text_.find('(', at_) - at_ + 1;
            const std::string close = ")" + std::string(text_.substr(at_ + 1, opening - 2)) + "\"";
            closing = close.size();
            end = text_.find(close, at_ + opening);
            end = end == std::string_view::npos ? text_.size() : end + closing;
        }
        if (!rewriting_.literal || end - at_ < opening + closing || text_[end - 1] != '"') {
            CopyThrough(end);
            return;
        }
        Copy(opening);
        result_ += rewriting_.literal(text_.substr(at_, end - closing - at_));
        at_ = end - closing;
        Copy(closing);
    }

    std::string_view text_;
    const TextRewriting& rewriting_;
    std::string result_;
    std::size_t at_ = 0;
};

} // namespace

std::string RewritePreprocessedText(std::string_view text, const TextRewriting& rewriting) {
    return Rewriter(text, rewriting).Run();
}

} // namespace Orvanta
