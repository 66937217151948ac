#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Orvanta {

// The form of the files that the core writes for itself: fields that end with a zero byte, which neither a path nor a
// finding holds. The first one is the file's kind with its version.

/// Appends a field, which holds no zero byte, with its end.
void AppendField(std::string& text, std::string_view field);
/// Appends a field with a number in decimal digits.
void AppendNumber(std::string& text, std::uint64_t number);

/// Reads such a file field by field.
class FieldReader {
public:
    /// Reads the file at `path` whole.
    /// \throws ZelmException when it can't be read or is of another kind
    FieldReader(std::string path, std::string_view kind);

    /// The next field; valid as long as the reader.
    /// \throws ZelmException when the file ends before it
    [[nodiscard]] std::string_view Next();

    /// The next field, a number.
    /// \throws ZelmException when the file ends before it or it is none
    [[nodiscard]] std::uint64_t NextNumber();

    /// \throws ZelmException when there are fields left
    void ExpectEnd() const;

    /// \throws ZelmException that calls the file damaged
    [[noreturn]] void Fail() const;

private:
    std::string path_;
    std::string kind_;
    std::string text_;
    std::size_t position_ = 0;
};

} // namespace Orvanta
