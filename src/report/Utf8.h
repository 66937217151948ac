#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// What stands at one place of a text: a whole character, or the bytes that one U+FFFD takes the place of.
struct Utf8Step {
    std::size_t length; ///< bytes, at least 1
    bool isValid;
};

/// Looks at the character that begins at `at`, which is inside `text`.
[[nodiscard]] Utf8Step NextUtf8(std::string_view text, std::size_t at) noexcept;

/// Whether the text is UTF-8 from its beginning to its end: no overlong form, no surrogate, nothing cut off.
[[nodiscard]] bool IsValidUtf8(std::string_view text) noexcept;

/// For the start of a text file that is to be UTF-8: looks for the mark that UTF-16 begins with, and consumes nothing.
/// \throws ParseException "NAME: the text is UTF-16, expected UTF-8"
void RefuseUtf16(const std::string& name, std::istream& text);

/// Appends the text, with U+FFFD for each sequence that is no UTF-8, as the JSON library replaces them.
void AppendValidUtf8(std::string& target, std::string_view text);

/// The bytes of a stream as UTF-8: what is none is replaced by U+FFFD. Memory does not grow with the stream.
class Utf8Buffer : public std::streambuf {
public:
    /// The stream is in binary mode, and outlives the buffer.
    explicit Utf8Buffer(std::istream& bytes) : bytes_(bytes) {}

protected:
    int_type underflow() override;

private:
    std::istream& bytes_;
    std::string raw_;  // read, not yet handed on
    std::string text_; // what is handed on
};

} // namespace OrvlogConverter
