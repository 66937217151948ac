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

[[nodiscard]] constexpr bool IsDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

/// `text` without white space at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text) noexcept;

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
[[nodiscard]] std::string ToLowerAscii(std::string_view text);
[[nodiscard]] bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;
[[nodiscard]] bool ContainsIgnoringCase(std::string_view text, std::string_view part) noexcept;

/// Fills the placeholders "%1%", "%2%", ... of `text`; each is replaced wherever it stands, values are put in as they
/// are.
[[nodiscard]] std::string FillPlaceholders(std::string_view text, std::initializer_list<std::string_view> values);

} // namespace Orvanta
