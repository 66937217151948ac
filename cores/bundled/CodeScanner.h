#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvanta {

/// Letters and digits of ASCII, and the underscore.
[[nodiscard]] bool IsWordCharacter(char character);

/// The place behind the character or string literal whose quote stands at `begin`. One that is not closed in the text
/// ends behind it.
[[nodiscard]] std::size_t EndOfLiteral(std::string_view text, std::size_t begin);

/// Follows preprocessed text line by line and tells code from literals, of which raw strings may go over many lines.
class CodeScanner {
public:
    /// Takes the next line of the text, without its line end.
    void Read(std::string_view line);

    /// Whether the next line begins within a raw string.
    [[nodiscard]] bool IsInRawString() const noexcept { return !rawStringEnd_.empty(); }

    /// How many parentheses of the code are open now.
    [[nodiscard]] std::size_t OpenParentheses() const noexcept { return openParentheses_; }

private:
    // Each reads what begins there and returns the place behind it.
    // A word, and the raw string that it may be the prefix of.
    [[nodiscard]] std::size_t ReadWord(std::string_view line, std::size_t begin);
    // `quote` is where the quote behind the prefix stands.
    [[nodiscard]] std::size_t ReadRawString(std::string_view line, std::size_t quote);

    std::string rawStringEnd_; // what ends the raw string that the next line begins in; empty outside of one
    std::size_t openParentheses_ = 0;
};

} // namespace Orvanta
