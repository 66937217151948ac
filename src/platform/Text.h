#pragma once

#include <charconv>
#include <concepts>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace Orvanta {

/// Space, tab, line feed, vertical tab, form feed and carriage return.
[[nodiscard]] bool IsWhiteSpace(char character) noexcept;

/// ASCII digits, whatever the locale.
[[nodiscard]] constexpr bool IsDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

/// `text` without white space at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text) noexcept;

/// What begins a text that some editors save as UTF-8.
inline constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";

/// The text behind a byte order mark at its start.
[[nodiscard]] std::string_view WithoutUtf8Mark(std::string_view text) noexcept;

/// Cuts what stands before the first of `separators` off `text`, and that separator; all of it where there is none.
[[nodiscard]] std::string_view TakeUpTo(std::string_view& text, std::string_view separators) noexcept;

/// Cuts the first line off `text` and returns it without its end, which is "\n" or "\r\n" and may be missing.
[[nodiscard]] std::string_view TakeLine(std::string_view& text) noexcept;

/// Reads the number that all of `text` is, in decimal digits and without a "+". Gives std::errc() when it is one, else
/// `invalid_argument`, or `result_out_of_range` for one that `number` can't hold.
template <std::integral Number>
[[nodiscard]] std::errc ReadWholeNumber(std::string_view text, Number& number) noexcept {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return stop == end ? error : std::errc::invalid_argument;
}

/// The number that all of `text` is; absent when it is none that `Number` can hold.
template <std::integral Number>
[[nodiscard]] std::optional<Number> WholeNumber(std::string_view text) noexcept {
    Number number = 0;
    return ReadWholeNumber(text, number) == std::errc() ? std::optional(number) : std::nullopt;
}

/// ASCII letters only; every other byte stays.
[[nodiscard]] char ToLowerAscii(char character) noexcept;
/// The same for each character of a text.
[[nodiscard]] std::string ToLowerAscii(std::string_view text);
/// Whether the texts are the same but for the case of ASCII letters.
[[nodiscard]] bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;
/// Whether `part` stands somewhere in `text`, the case of ASCII letters aside. An empty part does.
[[nodiscard]] bool ContainsIgnoringCase(std::string_view text, std::string_view part) noexcept;

/// Fills the placeholders "%1%", "%2%", ... of `text`; each is replaced wherever it stands, values are put in as they
/// are.
[[nodiscard]] std::string FillPlaceholders(std::string_view text, std::initializer_list<std::string_view> values);

/// The text between double quotes, for a message.
[[nodiscard]] inline std::string InQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

} // namespace Orvanta
