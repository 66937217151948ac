#include "platform/windows/WideText.h"

#include <array>
#include <cwchar>

#include <windows.h>

namespace Orvanta {

namespace {

// Where a folder's name must end, so that a file of the old short form fits behind it.
constexpr std::size_t LongestPlainPath = MAX_PATH - 12;

// The first call tells the length, the second converts.
std::wstring Widen(unsigned codePage, std::string_view text) {
    std::wstring wide;
    if (text.empty()) {
        return wide;
    }
    const int size = static_cast<int>(text.size());
    const int length = ::MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
    wide.resize(static_cast<std::size_t>(length));
    ::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), length);
    return wide;
}

// `usedDefault`, which may be null, tells whether a character had to be replaced.
std::string Narrow(unsigned codePage, unsigned long flags, std::wstring_view text, BOOL* usedDefault) {
    std::string narrow;
    if (text.empty()) {
        return narrow;
    }
    const int length = static_cast<int>(text.size());
    const int size = ::WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(size));
    ::WideCharToMultiByte(codePage, flags, text.data(), length, narrow.data(), size, nullptr, usedDefault);
    return narrow;
}

bool IsSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

// "\\?\" and "\\.\": taken as they are.
bool IsVerbatim(std::wstring_view path) {
    return path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
}

// How long the path is once the current directory stands in front, at least; by text alone, which is cheap.
std::size_t LengthOfFullPath(std::wstring_view path) {
    const bool isFull = path.size() >= 2 && (path[1] == L':' || (IsSeparator(path[0]) && IsSeparator(path[1])));
    return path.size() + (isFull ? 0 : ::GetCurrentDirectoryW(0, nullptr));
}

// The program's own manifest makes UTF-8 of it for this process alone.
unsigned CodePageOfNewConsoles() {
    std::array<wchar_t, 8> digits{};
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_SYSTEM_DEFAULT, LOCALE_IDEFAULTCODEPAGE, digits.data(),
                                         static_cast<int>(digits.size()));
    const unsigned codePage = length > 0 ? static_cast<unsigned>(std::wcstoul(digits.data(), nullptr, 10)) : 0;
    return codePage != 0 ? codePage : CP_OEMCP;
}

} // namespace

std::wstring ToWide(std::string_view text) {
    return Widen(CP_UTF8, text);
}

std::string FromWide(std::wstring_view text) {
    return Narrow(CP_UTF8, 0, text, nullptr);
}

std::string FromActiveCodePage(std::string_view text) {
    // Mostly so, by the program's manifest; older systems do not know that.
    return ::GetACP() == CP_UTF8 ? std::string(text) : FromWide(Widen(CP_ACP, text));
}

std::string FromConsoleCodePage(std::string_view text) {
    // Text in another code page is hardly ever valid UTF-8 by chance.
    if (text.empty() || ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                                              nullptr, 0) != 0) {
        return std::string(text);
    }
    const unsigned codePage = ::GetConsoleOutputCP();
    return FromWide(Widen(codePage != 0 ? codePage : CodePageOfNewConsoles(), text));
}

std::optional<std::string> ToActiveCodePage(std::string_view text) {
    if (::GetACP() == CP_UTF8) {
        return std::string(text);
    }
    // Without best fits: a similar character would name another file.
    BOOL usedDefault = FALSE;
    std::string narrow = Narrow(CP_ACP, WC_NO_BEST_FIT_CHARS, ToWide(text), &usedDefault);
    if (usedDefault != FALSE) {
        return std::nullopt;
    }
    return narrow;
}

std::wstring WidePath(std::string_view path) {
    std::wstring wide = ToWide(path);
    // Left as it is where possible: a path in the form without a limit is taken letter by letter.
    if (IsVerbatim(wide) || LengthOfFullPath(wide) < LongestPlainPath) {
        return wide;
    }
    std::wstring full(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.empty() || IsVerbatim(full)) {
        return wide;
    }
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

} // namespace Orvanta
