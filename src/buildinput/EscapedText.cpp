#include "buildinput/EscapedText.h"

#include "platform/Table.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

namespace Orvanta {

namespace {

constexpr std::size_t HexadecimalDigits = 2; // at most, of an escape
constexpr std::size_t OctalDigits = 3;

struct Escape {
    char letter;
    char character;
};

// Any other character behind a backslash stands for itself.
constexpr Escape Escapes[] = {
    {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'v', '\v'}, {'f', '\f'}, {'a', '\a'}, {'b', '\b'},
};

/// Takes up to `most` digits of a base off the text; no value when there is none.
std::optional<char> TakeCode(std::string_view& text, std::size_t most, int base) {
    unsigned code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + std::min(most, text.size()), code, base);
    if (error != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return static_cast<char>(static_cast<unsigned char>(code));
}

/// Takes an escape off the text, which follows its backslash.
char TakeEscape(std::string_view& text) {
    // Digits without a letter are octal, as many as three: a tracer writes fewer where no digit follows.
    if (const std::optional<char> character = TakeCode(text, OctalDigits, 8)) {
        return *character;
    }
    const char letter = text.front();
    text.remove_prefix(1);
    if (letter == 'x') {
        return TakeCode(text, HexadecimalDigits, 16).value_or('x');
    }
    const Escape* const escape = FindRow(Escapes, &Escape::letter, letter);
    return escape != nullptr ? escape->character : letter;
}

} // namespace

// Copies stretches without a backslash as a whole: most texts are one.
void DecodeEscapes(std::string_view raw, std::string& text) {
    text.clear();
    while (true) {
        const std::size_t plain = std::min(raw.find('\\'), raw.size());
        text += raw.substr(0, plain);
        // Nothing is left, or a lone backslash, which protects nothing: the text was cut there.
        if (plain + 1 >= raw.size()) {
            return;
        }
        raw.remove_prefix(plain + 1);
        text += TakeEscape(raw);
    }
}

} // namespace Orvanta
