#include "buildinput/trace/LineReader.h"

#include "platform/Exceptions.h"

#include <algorithm>
#include <cstring>

namespace Orvanta {

namespace {

constexpr std::size_t BlockSize = std::size_t{256} << 10U;

std::size_t FindLineFeed(const std::vector<char>& block, std::size_t begin, std::size_t end) {
    const void* const found = begin == end ? nullptr : std::memchr(block.data() + begin, '\n', end - begin);
    return found == nullptr ? end : static_cast<std::size_t>(static_cast<const char*>(found) - block.data());
}

} // namespace

LineReader::LineReader(std::istream& input) : input_(input), block_(BlockSize) {}

bool LineReader::Next(std::string_view& line) {
    if (isCut_ && !DropRestOfLine()) {
        return false;
    }
    std::size_t searched = 0; // bytes behind next_ that hold no line feed
    do {
        const std::size_t end = FindLineFeed(block_, next_ + searched, end_);
        if (end != end_) {
            HandOut(line, end);
            next_ = end + 1;
            return true;
        }
        searched = end_ - next_;
        // A file without line ends, which is no trace, must not be read into the memory as one line.
        if (searched > LongestLine) {
            HandOut(line, next_ + LongestLine);
            next_ += LongestLine;
            isCut_ = true;
            return true;
        }
    } while (FillBlock());
    // Behind the last line end nothing may be left; what is left is a line without an end.
    if (next_ == end_) {
        return false;
    }
    HandOut(line, end_);
    next_ = end_;
    return true;
}

bool LineReader::DropRestOfLine() {
    do {
        const std::size_t end = FindLineFeed(block_, next_, end_);
        if (end != end_) {
            next_ = end + 1;
            isCut_ = false;
            return true;
        }
        next_ = end_;
    } while (FillBlock());
    return false;
}

void LineReader::HandOut(std::string_view& line, std::size_t end) {
    ++number_;
    line = std::string_view(block_.data() + next_, end - next_);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
}

/// Moves what is left to the front of the block and reads more behind it; false when nothing is left to read.
bool LineReader::FillBlock() {
    std::copy(block_.begin() + static_cast<std::ptrdiff_t>(next_), block_.begin() + static_cast<std::ptrdiff_t>(end_),
              block_.begin());
    end_ -= next_;
    next_ = 0;
    if (end_ * 2 > block_.size()) {
        block_.resize(block_.size() * 2);
    }
    input_.read(block_.data() + end_, static_cast<std::streamsize>(block_.size() - end_));
    // The end of the stream is no fault: it sets other marks.
    if (input_.bad()) {
        throw ZelmException("Couldn't read the input to its end");
    }
    end_ += static_cast<std::size_t>(input_.gcount());
    return input_.gcount() > 0;
}

} // namespace Orvanta
