#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A preprocessed text as it is compared: its lines that aren't blank, each with the file and line that it comes from.
/// So texts are equal whatever their line markers look like, and however many blank lines stand for a gap.
class ComparableText {
public:
    explicit ComparableText(std::string text);
    ComparableText(ComparableText&&) noexcept = default;
    ComparableText& operator=(ComparableText&&) noexcept = default;

    /// The place of the first line, counted from 0, that is another one in the other text, or comes from another file;
    /// where one of the texts has no markers, files don't count. Absent when the texts are equal.
    [[nodiscard]] std::optional<std::size_t> FirstDifference(const ComparableText& other) const;

    /// The line at a place; empty behind the last one. As long as the object.
    [[nodiscard]] std::string_view LineAt(std::size_t place) const;

    /// Where that line comes from, as "FILE:LINE".
    [[nodiscard]] std::string OriginOf(std::size_t place) const;

private:
    struct Line {
        std::size_t begin = 0; // in text_
        std::size_t size = 0;
        std::uint32_t file = 0; // in files_
        std::uint32_t number = 0;
    };

    // Takes a line that is a marker; false when it is none.
    bool TakeMarker(std::string_view line);

    std::string text_;
    std::vector<std::string> files_ = {""};
    std::vector<Line> lines_;
    std::uint32_t file_ = 0;   // of the next line, while the text is read
    std::uint32_t number_ = 1; // likewise
    bool hasMarkers_ = false;
};

} // namespace Orvanta
