#include "platform/InputFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/StopFlag.h"

#include <algorithm>

namespace Orvanta {

InputStream::InputStream(const std::string& path) : std::istream(static_cast<std::streambuf*>(this)), file_(path) {}

std::streambuf::int_type InputStream::underflow() {
    // Large, as each read costs a call of the system and a look at the stop flag.
    constexpr std::size_t BlockSize = 262144;
    // The standard lets this be called while there is still something to take.
    if (gptr() < egptr()) {
        return std::streambuf::traits_type::to_int_type(*gptr());
    }
    if (ProcessStopFlag().IsSet()) {
        return std::streambuf::traits_type::eof(); // a file on a disk may be long too
    }
    block_.resize(BlockSize);
    const std::size_t count = file_.Read(block_);
    setg(block_.data(), block_.data(), block_.data() + count);
    return count == 0 ? std::streambuf::traits_type::eof() : std::streambuf::traits_type::to_int_type(*gptr());
}

std::streamsize InputStream::xsgetn(char* target, std::streamsize count) {
    constexpr std::streamsize FewBytes = 32768; // for which a call of the system each would cost more than a copy
    std::streamsize filled = std::min<std::streamsize>(count, egptr() - gptr());
    std::copy_n(gptr(), filled, target);
    gbump(static_cast<int>(filled));
    while (count - filled >= FewBytes && !ProcessStopFlag().IsSet()) {
        const std::size_t read = file_.Read({target + filled, static_cast<std::size_t>(count - filled)});
        if (read == 0) {
            return filled;
        }
        filled += static_cast<std::streamsize>(read);
    }
    return filled + (filled < count ? std::streambuf::xsgetn(target + filled, count - filled) : 0);
}

void EndWhenStopped() {
    // What shells give for a program that Ctrl+C has ended: 128 and the number of the signal.
    constexpr int InterruptedCode = 130;
    if (ProcessStopFlag().IsSet()) {
        throw ZelmRcException(InterruptedCode);
    }
}

std::string ReadWholeFile(const std::string& path) {
    constexpr std::size_t SmallestBlock = 4096;
    InputFile file(path);
    if (file.IsEndless()) {
        throw FileException(path, "it is no file, pipe or terminal");
    }
    std::string content(file.SizeHint() + 1, '\0'); // the byte more lets one short read find the end
    std::size_t filled = 0;
    while (true) {
        if (filled == content.size()) {
            // Twice the size each time: what is no file on a disk does not tell how long it is.
            content.resize(content.size() + std::max(SmallestBlock, content.size()));
        }
        const std::size_t count = file.Read({content.data() + filled, content.size() - filled});
        if (count == 0) {
            // A stop looks like an end of the file: half a text must not pass for the whole.
            EndWhenStopped();
            content.resize(filled);
            return content;
        }
        filled += count;
    }
}

} // namespace Orvanta
