#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Commands make up nearly all of what is kept of a build. As a vector of strings each word would take some thirty bytes
// beside its own, and memory of its own when it is long: words of a command are read in order, and need neither.

namespace Orvanta {

/// The words of a command, packed into one block of memory: a build has a hundred thousand commands. Immutable.
class ArgumentList {
public:
    ArgumentList() = default;
    /// Copies the words, which must hold no zero bytes: one would come out as two.
    explicit ArgumentList(std::span<const std::string> words);

    /// The number of words, empty ones included.
    [[nodiscard]] std::size_t Size() const noexcept { return size_; }

    /// The word at `index`, which must be below Size(); valid as long as the list. Walks the words before it.
    [[nodiscard]] std::string_view operator[](std::size_t index) const;
    /// A copy of all words; for one who needs several of them, as finding a single one walks from the front.
    [[nodiscard]] std::vector<std::string> ToVector() const;

private:
    std::string words_; // each followed by a zero byte, which no argument can hold
    std::size_t size_ = 0;
};

} // namespace Orvanta
