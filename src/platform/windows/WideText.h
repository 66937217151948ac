#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// UTF-8 to UTF-16. Bytes that are no UTF-8 become replacement characters.
[[nodiscard]] std::wstring ToWide(std::string_view text);

/// UTF-16 to UTF-8. A surrogate without its partner becomes a replacement character.
[[nodiscard]] std::string FromWide(std::wstring_view text);

/// Text as the system's narrow functions give it, in the active code page, to UTF-8.
[[nodiscard]] std::string FromActiveCodePage(std::string_view text);

/// Text as console programs write it to a pipe, to UTF-8: it is that already, or in the code page of the console.
[[nodiscard]] std::string FromConsoleCodePage(std::string_view text);

/// UTF-8 to the active code page; absent when it has no such characters.
[[nodiscard]] std::optional<std::string> ToActiveCodePage(std::string_view text);

/// A path in the form that the system's wide functions take; one that they would find too long comes absolute, in the
/// form that knows no limit.
[[nodiscard]] std::wstring WidePath(std::string_view path);

} // namespace Orvanta
