#include "report/StandardInput.h"

#include "platform/Console.h"
#include "platform/Text.h"

#include <algorithm>

namespace OrvlogConverter {

namespace {

constexpr std::size_t BlockSize = 262144;

// The place behind the string that begins at `at`.
std::size_t EndOfString(std::string_view text, std::size_t at) noexcept {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        at += text[at] == '\\' ? 1U : 0U;
    }
    return std::min(at + 1, text.size());
}

int DepthChange(char character) noexcept {
    const bool isOpened = character == '{' || character == '[';
    const bool isClosed = character == '}' || character == ']';
    return (isOpened ? 1 : 0) - (isClosed ? 1 : 0);
}

// Whether a string is a key: a colon stands behind it.
bool IsKey(std::string_view behind) noexcept {
    return behind.substr(std::min(behind.find_first_not_of(" \t"), behind.size())).starts_with(':');
}

} // namespace

// The stream's buffer is the object itself, which must be made first: hence the order of the bases.
StandardInput::StandardInput() : std::istream(static_cast<std::streambuf*>(this)) {}

std::string_view StandardInput::Front(std::size_t size) {
    std::size_t filled = 0;
    buffer_.resize(size);
    // A pipe gives a few bytes at a time; too few would not show the form.
    while (filled < size) {
        const std::size_t count = Orvanta::ReadFromStandardInput({buffer_.data() + filled, size - filled});
        if (count == 0) {
            break;
        }
        filled += count;
    }
    setg(buffer_.data(), buffer_.data(), buffer_.data() + filled);
    return {buffer_.data(), filled};
}

std::streambuf::int_type StandardInput::underflow() {
    // What Front has looked at comes first.
    if (gptr() < egptr()) {
        return std::streambuf::traits_type::to_int_type(*gptr());
    }
    buffer_.resize(BlockSize);
    const std::size_t count = Orvanta::ReadFromStandardInput(buffer_);
    setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
    return count == 0 ? std::streambuf::traits_type::eof() : std::streambuf::traits_type::to_int_type(*gptr());
}

bool LooksLikeDocument(std::string_view start) noexcept {
    start = Orvanta::WithoutUtf8Mark(start);
    start.remove_prefix(std::min(start.find_first_not_of(" \t\r\n"), start.size()));
    if (!start.starts_with('{')) {
        return false;
    }
    // A scan, not a parse: the beginning of a document is no JSON yet, as it stops in the middle.
    int depth = 0;
    for (std::size_t at = 0; at < start.size(); ++at) {
        if (start[at] == '"') {
            const std::size_t end = EndOfString(start, at);
            // Only the document's own member counts: a text inside a message may hold the word.
            if (depth == 1 && start.substr(at, end - at) == "\"warnings\"" && IsKey(start.substr(end))) {
                return true;
            }
            at = end - 1;
            continue;
        }
        depth += DepthChange(start[at]);
        // At depth 0 the whole object stands on one line, without the member: a message. One that goes on behind a
        // line's end is no message of a line form.
        if (depth == 0 || start[at] == '\n') {
            return depth != 0;
        }
    }
    return false;
}

} // namespace OrvlogConverter
