#include "suppress/LineHash.h"

#include "platform/Text.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace OrvlogConverter {

namespace {

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

std::string_view WithoutMarks(std::string_view line) {
    constexpr std::string_view Introducer = "//-";
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
    normal.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        if (Orvanta::IsDigit(text[at])) {
            while (at < text.size() && Orvanta::IsDigit(text[at])) {
                ++at;
            }
            normal += '_';
        } else if (Orvanta::IsWhiteSpace(text[at])) {
            while (at < text.size() && Orvanta::IsWhiteSpace(text[at])) {
                ++at;
            }
            normal += ' ';
        } else {
            while (at < text.size() && !Orvanta::IsDigit(text[at]) && !Orvanta::IsWhiteSpace(text[at])) {
                ++at;
            }
            normal.append(text, begin, at - begin);
        }
    }
    return normal;
}

std::uint32_t HashLine(std::string_view line, std::uint32_t version) {
    return version < CurrentBaseVersion ? HashBytes(NormalizeText(line)) : HashBytes(WithoutMarks(line));
}

} // namespace OrvlogConverter
