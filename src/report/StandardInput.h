#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The bytes of standard input, in blocks. One for a process: what it has read, no other can read again.
class StandardInput : private std::streambuf, public std::istream {
public:
    /// Reads nothing yet.
    StandardInput();

    /// Looks at what comes first without taking it: at least `size` bytes, or all there are. Before the first reading.
    /// \throws FileException
    [[nodiscard]] std::string_view Front(std::size_t size);

protected:
    // The next block, which may be short: a pipe gives what it has. Ends when nothing more comes.
    std::streambuf::int_type underflow() override;

private:
    std::string buffer_;
};

/// Whether a report whose name says nothing is one JSON document, judged by its beginning: an object that has a member
/// "warnings", or goes on behind the end of its first line.
[[nodiscard]] bool LooksLikeDocument(std::string_view start) noexcept;

} // namespace OrvlogConverter
