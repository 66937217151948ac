#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace Orvanta {

/// Space, tab, line feed, vertical tab, form feed and carriage return.
[[nodiscard]] bool IsWhiteSpace(char character) noexcept;

[[nodiscard]] constexpr bool IsDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

/// `text` without white space at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text) noexcept;

/// ASCII letters only; every other byte stays.
[[nodiscard]] char ToLowerAscii(char character) noexcept;
[[nodiscard]] std::string ToLowerAscii(std::string_view text);
[[nodiscard]] bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;
[[nodiscard]] bool ContainsIgnoringCase(std::string_view text, std::string_view part) noexcept;

/// Fills the placeholders "%1%", "%2%", ... of `text`; each is replaced wherever it stands, values are put in as they
/// are.
[[nodiscard]] std::string FillPlaceholders(std::string_view text, std::initializer_list<std::string_view> values);

} // namespace Orvanta
