#include "report/Utf8.h"

#include "report/Exceptions.h"

#include <algorithm>
#include <istream>

namespace OrvlogConverter {

namespace {

constexpr std::string_view Replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr std::size_t BlockSize = 65536;

// A lead byte from `first` to `last` begins a character of `length` bytes.
struct LeadRow {
    unsigned char first;
    unsigned char last;
    std::size_t length;
    unsigned char secondFirst; // what may follow the lead byte; later bytes are 80 to BF
    unsigned char secondLast;
};

// Narrower second bytes keep out overlong forms, surrogates and what lies above U+10FFFF.
constexpr LeadRow Leads[] = {
    {0x00, 0x7F, 1, 0x00, 0x00}, {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

// The first place from `at` on that needs a closer look; the text's size when there is none.
std::size_t FindNonAscii(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

} // namespace

Utf8Step NextUtf8(std::string_view text, std::size_t at) noexcept {
    const auto lead = static_cast<unsigned char>(text[at]);
    for (const LeadRow& row : Leads) {
        if (lead < row.first || lead > row.last) {
            continue;
        }
        for (std::size_t index = 1; index < row.length; ++index) {
            const unsigned char low = index == 1 ? row.secondFirst : 0x80;
            const unsigned char high = index == 1 ? row.secondLast : 0xBF;
            // Cut off: one replacement stands for all the bytes that were there.
            if (at + index == text.size()) {
                return {index, false};
            }
            const auto byte = static_cast<unsigned char>(text[at + index]);
            if (byte < low || byte > high) {
                return {index, false};
            }
        }
        return {row.length, true};
    }
    // No character begins so: a byte from the middle of one, or one that UTF-8 never uses.
    return {1, false};
}

bool IsValidUtf8(std::string_view text) noexcept {
    for (std::size_t at = FindNonAscii(text, 0); at < text.size(); at = FindNonAscii(text, at)) {
        const Utf8Step step = NextUtf8(text, at);
        if (!step.isValid) {
            return false;
        }
        at += step.length;
    }
    return true;
}

void AppendValidUtf8(std::string& target, std::string_view text) {
    std::size_t begin = 0; // of what is valid and not yet appended
    for (std::size_t at = FindNonAscii(text, 0); at < text.size(); at = FindNonAscii(text, at)) {
        const Utf8Step step = NextUtf8(text, at);
        if (!step.isValid) {
            target += text.substr(begin, at - begin);
            target += Replacement;
            begin = at + step.length;
        }
        at += step.length;
    }
    target += text.substr(begin);
}

void RefuseUtf16(const std::string& name, std::istream& text) {
    // Puts back what it takes: the stream may be a pipe.
    const int first = text.peek();
    if (first == 0xFF || first == 0xFE) { // no UTF-8 begins so
        text.get();
        const bool isMark = text.peek() == (first == 0xFF ? 0xFE : 0xFF);
        text.unget();
        if (isMark) {
            throw ParseException(name + ": the text is UTF-16, expected UTF-8");
        }
    }
    text.clear(text.rdstate() & ~std::ios::eofbit); // of a text without a second byte
}

Utf8Buffer::int_type Utf8Buffer::underflow() {
    const std::size_t kept = raw_.size();
    raw_.resize(kept + BlockSize);
    // Behind what the last block has left: at most the part of one character.
    bytes_.read(raw_.data() + kept, static_cast<std::streamsize>(BlockSize));
    const auto count = static_cast<std::size_t>(bytes_.gcount());
    raw_.resize(kept + count);
    if (raw_.empty()) {
        return traits_type::eof();
    }
    // A character that the block cuts waits for the next one.
    std::size_t end = raw_.size();
    if (count > 0) {
        // A character has four bytes at most, so a cut one begins at one of the last three.
        constexpr std::size_t LongestPart = 3;
        for (std::size_t at = end - std::min(LongestPart, end); at < raw_.size(); ++at) {
            const bool isLead = static_cast<unsigned char>(raw_[at]) >= 0xC0;
            const Utf8Step step = NextUtf8(raw_, at);
            if (isLead && !step.isValid && at + step.length == raw_.size()) {
                end = at;
                break;
            }
        }
    }
    // At the end of the stream nothing completes a part: it is replaced like any other.
    text_.clear();
    AppendValidUtf8(text_, std::string_view(raw_).substr(0, end));
    raw_.erase(0, end);
    if (text_.empty()) { // a block of a few bytes that are one cut character
        return underflow();
    }
    setg(text_.data(), text_.data(), text_.data() + text_.size());
    return traits_type::to_int_type(*gptr());
}

} // namespace OrvlogConverter
