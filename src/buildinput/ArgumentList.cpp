#include "buildinput/ArgumentList.h"

namespace Orvanta {

ArgumentList::ArgumentList(std::span<const std::string> words) : size_(words.size()) {
    // Added up first, so that the block is got once and has no room to spare.
    std::size_t bytes = 0;
    for (const std::string& word : words) {
        bytes += word.size() + 1;
    }
    words_.reserve(bytes);
    for (const std::string& word : words) {
        words_ += word;
        words_ += '\0';
    }
}

std::string_view ArgumentList::operator[](std::size_t index) const {
    std::size_t begin = 0;
    for (; index > 0; --index) {
        begin = words_.find('\0', begin) + 1;
    }
    return std::string_view(words_).substr(begin, words_.find('\0', begin) - begin);
}

std::vector<std::string> ArgumentList::ToVector() const {
    std::vector<std::string> words;
    words.reserve(size_);
    for (std::size_t begin = 0; words.size() < size_;) {
        const std::size_t end = words_.find('\0', begin);
        words.emplace_back(words_, begin, end - begin);
        begin = end + 1;
    }
    return words;
}

} // namespace Orvanta
