#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <span>
#include <streambuf>
#include <string>

namespace Orvanta {

/// A file open for reading, from its beginning to its end, whatever it is: a wait for the writer of a pipe or for a
/// terminal ends when the process is asked to stop. Move-only; closes itself.
class InputFile {
public:
    /// A pipe without a writer is open at once.
    /// \throws FileException
    explicit InputFile(const std::string& path);
    ~InputFile();
    /// The moved one may only be destroyed or assigned to.
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&& other) noexcept;

    /// Puts the next bytes at the front of `target` and returns how many: 0 at the end, and when the process is asked
    /// to stop meanwhile. \throws FileException
    [[nodiscard]] std::size_t Read(std::span<char> target);

    /// The size of a file on a disk; 0 for all else.
    [[nodiscard]] std::size_t SizeHint() const noexcept;

    /// Whether it may give bytes without end: a device that is no terminal.
    [[nodiscard]] bool IsEndless() const noexcept;

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

/// The same as a stream, read in large blocks. It ends when the process is asked to stop, whatever it reads. One whose
/// reading fails is `bad`.
class InputStream : private std::streambuf, public std::istream {
public:
    /// \throws FileException
    explicit InputStream(const std::string& path);

    /// As of the file.
    [[nodiscard]] bool IsEndless() const noexcept { return file_.IsEndless(); }

protected:
    /// Reads the next block; the end at a stop as well, which `EndWhenStopped` tells apart.
    std::streambuf::int_type underflow() override;
    /// The same for many bytes, which go straight to where they are wanted.
    std::streamsize xsgetn(char* target, std::streamsize count) override;

private:
    InputFile file_;
    std::string block_;
};

/// The process is asked to stop in the middle of reading a file that is of no use in part. Ends the process in silence.
/// \throws ZelmRcException
void EndWhenStopped();

} // namespace Orvanta
