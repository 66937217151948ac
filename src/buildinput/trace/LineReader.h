#pragma once

#include <cstddef>
#include <istream>
#include <string_view>
#include <vector>

// A trace may be larger than the memory, and a line of it as long as a command with all its variables. The lines of the
// standard library would be copied one by one out of the stream's own buffer, while most of them are passed over.

namespace Orvanta {

/// Hands out the lines of a stream of any length from blocks: nothing is copied but lines that cross two blocks.
class LineReader {
public:
    /// The longest line in bytes; of a longer one this much is handed out.
    static constexpr std::size_t LongestLine = std::size_t{64} << 20U;

    /// `input` must outlive the reader.
    explicit LineReader(std::istream& input);

    /// Reads the next line, without its line end; false at the end of the stream. The line is valid until the next
    /// call. \throws ZelmException when the stream can't be read to its end
    bool Next(std::string_view& line);

    /// The number of the line read last, from 1.
    [[nodiscard]] std::size_t Number() const noexcept { return number_; }

private:
    /// Makes the block larger when half of it is one unfinished line. Views into the block are no longer valid.
    bool FillBlock();
    /// Skips what is left of a line that was cut; false when the stream ends within it.
    bool DropRestOfLine();
    /// Makes `line` what lies before `end` and counts it. Where to go on is for the caller to set.
    void HandOut(std::string_view& line, std::size_t end);

    std::istream& input_;
    std::vector<char> block_;
    std::size_t next_ = 0; // of the block's bytes, the first not handed out yet
    std::size_t end_ = 0;  // behind the bytes that the block holds
    std::size_t number_ = 0;
    bool isCut_ = false; // the rest of the line read last is still to be dropped
};

} // namespace Orvanta
