#include "suppress/LineHash.h"

#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace OrvlogConverter {

namespace {

/// What a character is to the normal form of a text.
enum class Kind : std::uint8_t { Plain, Digit, Space };

// Every byte of every message is looked up here.
constexpr std::array<Kind, 256> Kinds = [] {
    std::array<Kind, 256> kinds = {};
    for (unsigned char digit = '0'; digit <= '9'; ++digit) {
        kinds[digit] = Kind::Digit;
    }
    for (const char space : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        kinds[static_cast<unsigned char>(space)] = Kind::Space;
    }
    return kinds;
}();

// Fixed for good: the bases of all projects hold its values. Blanks don't count, so that code can be indented anew;
// bytes above ASCII don't, as the same line may come in another encoding.
std::uint32_t HashBytes(std::string_view line) {
    std::uint32_t hash = 0;
    for (const char character : line) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 128 && byte != '\t' && byte != ' ') {
            hash = std::rotl(hash, 1) ^ byte;
        }
    }
    return hash;
}

// Whether `text`, which follows "//-", is "V", three or four digits, and white space.
bool IsMark(std::string_view text) {
    if (text.empty() || (text.front() != 'V' && text.front() != 'v')) {
        return false;
    }
    text.remove_prefix(1);
    const auto notDigit = std::find_if_not(text.begin(), text.end(), Orvanta::IsDigit);
    const std::ptrdiff_t digits = notDigit - text.begin();
    return (digits == 3 || digits == 4) && std::all_of(notDigit, text.end(), Orvanta::IsWhiteSpace);
}

// Without the marks at its end, of which there may be several: marking a line must not make it another one.
std::string_view WithoutMarks(std::string_view line) {
    constexpr std::string_view Introducer = "//-";
    // Few lines end in a digit, so few are searched.
    const std::string_view trimmed = Orvanta::Trim(line);
    if (trimmed.empty() || !Orvanta::IsDigit(trimmed.back())) {
        return line;
    }
    for (std::size_t at = line.rfind(Introducer);
         at != std::string_view::npos && IsMark(line.substr(at + Introducer.size())); at = line.rfind(Introducer)) {
        line = line.substr(0, at);
    }
    return line;
}

} // namespace

std::string NormalizeText(std::string_view text) {
    text = Orvanta::Trim(text);
    std::string normal;
    // The normal form is never longer.
    normal.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const Kind kind = Kinds[static_cast<unsigned char>(text[at])];
        while (at < text.size() && Kinds[static_cast<unsigned char>(text[at])] == kind) {
            ++at;
        }
        switch (kind) {
        case Kind::Plain:
            normal.append(text, begin, at - begin);
            break;
        case Kind::Digit:
            normal += '_';
            break;
        case Kind::Space:
            normal += ' ';
            break;
        }
    }
    return normal;
}

std::uint32_t HashLine(std::string_view line, std::uint32_t version) {
    return version < CurrentBaseVersion ? HashBytes(NormalizeText(line)) : HashBytes(WithoutMarks(line));
}

} // namespace OrvlogConverter
