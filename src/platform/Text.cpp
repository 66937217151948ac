#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace Orvanta {

bool IsWhiteSpace(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

std::string_view Trim(std::string_view text) noexcept {
    while (!text.empty() && IsWhiteSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsWhiteSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view WithoutUtf8Mark(std::string_view text) noexcept {
    return text.starts_with(Utf8Mark) ? text.substr(Utf8Mark.size()) : text;
}

std::string_view TakeUpTo(std::string_view& text, std::string_view separators) noexcept {
    const std::string_view part = text.substr(0, text.find_first_of(separators));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

std::string_view TakeLine(std::string_view& text) noexcept {
    std::string_view line = text.substr(0, text.find('\n')); // much faster than a search for one of several
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

char ToLowerAscii(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string ToLowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        character = ToLowerAscii(character);
    }
    return lower;
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char one, char other) { return ToLowerAscii(one) == ToLowerAscii(other); });
}

bool ContainsIgnoringCase(std::string_view text, std::string_view part) noexcept {
    const auto found = std::search(text.begin(), text.end(), part.begin(), part.end(),
                                   [](char one, char other) { return ToLowerAscii(one) == ToLowerAscii(other); });
    return found != text.end() || part.empty();
}

std::string FillPlaceholders(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string filled;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t opening = std::min(text.find('%', position), text.size());
        filled += text.substr(position, opening - position);
        position = opening;
        if (position == text.size()) {
            break;
        }
        std::size_t number = 0;
        const char* const end = text.data() + text.size();
        // What is no placeholder stays as text, a lone "%" included.
        const auto [behind, error] = std::from_chars(text.data() + position + 1, end, number);
        if (error == std::errc() && behind != end && *behind == '%' && number >= 1 && number <= values.size()) {
            filled += values.begin()[number - 1];
            position = static_cast<std::size_t>(behind - text.data()) + 1;
        } else {
            filled += '%';
            ++position;
        }
    }
    return filled;
}

} // namespace Orvanta
