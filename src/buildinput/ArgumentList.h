#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The words of a command, packed into one block of memory: a build has a hundred thousand commands. Immutable.
class ArgumentList {
public:
    ArgumentList() = default;
    explicit ArgumentList(std::span<const std::string> words);

    [[nodiscard]] std::size_t Size() const noexcept { return size_; }

    /// The word at `index`, which must be below Size(); valid as long as the list. Walks the words before it.
    [[nodiscard]] std::string_view operator[](std::size_t index) const;
    [[nodiscard]] std::vector<std::string> ToVector() const;

private:
    std::string words_; // each followed by a zero byte, which no argument can hold
    std::size_t size_ = 0;
};

} // namespace Orvanta
