#include "buildinput/trace/TraceText.h"

#include "buildinput/EscapedText.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>

namespace Orvanta {

namespace {

constexpr std::string_view CutMark = "...";

/// The place of the quote that ends a literal; `text` begins behind the first one.
std::size_t FindEndOfLiteral(std::string_view text) {
    std::size_t position = 0;
    while (true) {
        // Looks for quotes and then back: texts are long, and mostly hold neither quotes nor backslashes.
        position = text.find('"', position);
        if (position == std::string_view::npos) {
            return position;
        }
        std::size_t begin = position;
        while (begin > 0 && text[begin - 1] == '\\') {
            --begin;
        }
        // Behind an odd number of backslashes the quote is part of the text.
        if ((position - begin) % 2 == 0) {
            return position;
        }
        ++position;
    }
}

} // namespace

std::string TraceLiteral::Decode() const {
    std::string text;
    DecodeEscapes(raw, text);
    return text;
}

void TraceLiteral::DecodeInto(std::string& text) const {
    DecodeEscapes(raw, text);
}

bool TraceTextReader::Take(std::string_view token) {
    if (!rest_.starts_with(token)) {
        return false;
    }
    rest_.remove_prefix(token.size());
    return true;
}

bool TraceTextReader::TakeLiteral(TraceLiteral& literal) {
    if (!rest_.starts_with('"')) {
        return false;
    }
    const std::string_view text = rest_.substr(1);
    const std::size_t end = FindEndOfLiteral(text);
    if (end == std::string_view::npos) {
        return false;
    }
    literal.raw = text.substr(0, end);
    rest_ = text.substr(end + 1);
    literal.isCut = Take(CutMark);
    return true;
}

bool TraceTextReader::TakeArray(TraceArray& array) {
    array.items.clear();
    array.isWhole = true;
    if (!Take("[")) {
        return false;
    }
    while (!Take("]")) {
        TraceLiteral literal;
        if (!array.items.empty() && !Take(", ")) {
            return false;
        }
        if (Take(CutMark)) {
            array.isWhole = false;
            return Take("]");
        }
        if (!TakeLiteral(literal)) {
            return false;
        }
        array.items.push_back(literal);
    }
    return true;
}

bool TraceTextReader::TakeFile(std::optional<std::int64_t>& number, std::optional<std::string>& path) {
    number.reset();
    if (!Take("AT_FDCWD")) {
        std::int64_t value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc()) {
            return false;
        }
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        number = value;
    }
    path = TracePath(rest_);
    if (path) {
        rest_.remove_prefix(rest_.find('>') + 1);
    }
    return true;
}

std::optional<TraceResult> TraceTextReader::TakeResult() {
    while (true) {
        // Arguments may hold brackets, too: the one that ends the call has "=" behind it.
        const std::size_t end = rest_.find(')');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        rest_.remove_prefix(end + 1);
        std::string_view text = rest_;
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (text.starts_with("= ")) {
            text.remove_prefix(2);
            TraceResult result;
            const auto [last, error] = std::from_chars(text.data(), text.data() + text.size(), result.value);
            result.comment = text.substr(static_cast<std::size_t>(last - text.data()));
            return error == std::errc() ? std::optional(result) : std::nullopt;
        }
    }
}

std::optional<std::string> TracePath(std::string_view text) {
    // "<" and ">" are escaped within a path.
    const std::size_t end = text.find('>');
    if (!text.starts_with("</") || end == std::string_view::npos) {
        return std::nullopt;
    }
    return TraceLiteral{text.substr(1, end - 1)}.Decode();
}

std::string_view TailOf(std::string_view text) {
    const std::size_t quote = text.rfind('"');
    return quote == std::string_view::npos ? text : text.substr(quote + 1);
}

bool HasFailed(std::string_view text) {
    if (text.empty() || IsDigit(text.back())) {
        return false; // the most frequent end: "= 3"
    }
    return TailOf(text).find("= -1 ") != std::string_view::npos;
}

bool HasResult(std::string_view text) {
    return TailOf(text).find(" = ") != std::string_view::npos;
}

} // namespace Orvanta
