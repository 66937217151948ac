#pragma once

#include <cstddef>
#include <fstream>
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

[[nodiscard]] bool IsValidUtf8(std::string_view text) noexcept;

/// Appends the text, with U+FFFD for each sequence that is no UTF-8, as the JSON library replaces them.
void AppendValidUtf8(std::string& target, std::string_view text);

/// The bytes of a file as UTF-8: what is none is replaced by U+FFFD. Memory does not grow with the file.
class Utf8FileBuffer : public std::streambuf {
public:
    /// The file is open for reading in binary mode, and outlives the buffer.
    explicit Utf8FileBuffer(std::ifstream& file) : file_(file) {}

protected:
    int_type underflow() override;

private:
    std::ifstream& file_;
    std::string raw_;  // read, not yet handed on
    std::string text_; // what is handed on
};

} // namespace OrvlogConverter
