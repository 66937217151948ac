#include "app/inspect/PreprocessedText.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

PreprocessedText::PreprocessedText(std::string text) : text_(std::move(text)) {
    std::string_view rest = text_;
    while (!rest.empty()) {
        const std::string_view line = TakeLine(rest);
        if (TakeMarker(line)) {
            continue;
        }
        if (!Trim(line).empty()) {
            lines_.push_back({static_cast<std::size_t>(line.data() - text_.data()), line.size(), file_, number_});
        }
        ++number_;
    }
}

// "# 12 "a.h" 1 3" or "#line 12 "a.h"".
bool PreprocessedText::TakeMarker(std::string_view line) {
    constexpr std::string_view Word = "line";
    if (!line.starts_with('#')) {
        return false;
    }
    line = Trim(line.substr(1));
    line = line.starts_with(Word) ? Trim(line.substr(Word.size())) : line;
    const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
    const std::optional<std::uint32_t> number = WholeNumber<std::uint32_t>(line.substr(0, digits));
    if (!number) {
        return false; // a pragma, say
    }
    hasMarkers_ = true;
    number_ = *number;
    const std::size_t quote = line.find('"', digits);
    const std::size_t end = line.rfind('"');
    if (quote != std::string_view::npos && end > quote) {
        const std::string_view name = line.substr(quote + 1, end - quote - 1);
        // From the back: a text comes back to the file that has included another.
        const auto known = std::find(files_.rbegin(), files_.rend(), name);
        if (known == files_.rend()) {
            files_.emplace_back(name);
            file_ = static_cast<std::uint32_t>(files_.size() - 1);
        } else {
            file_ = static_cast<std::uint32_t>(files_.rend() - known - 1);
        }
    }
    return true;
}

std::optional<std::size_t> PreprocessedText::FirstDifference(const PreprocessedText& other) const {
    const bool compareFiles = hasMarkers_ && other.hasMarkers_;
    const std::size_t common = std::min(lines_.size(), other.lines_.size());
    for (std::size_t place = 0; place < common; ++place) {
        if (LineAt(place) != other.LineAt(place) ||
            (compareFiles && files_[lines_[place].file] != other.files_[other.lines_[place].file])) {
            return place;
        }
    }
    return lines_.size() == other.lines_.size() ? std::nullopt : std::optional(common);
}

std::string_view PreprocessedText::LineAt(std::size_t place) const {
    return place < lines_.size() ? std::string_view(text_).substr(lines_[place].begin, lines_[place].size)
                                 : std::string_view();
}

std::string PreprocessedText::OriginOf(std::size_t place) const {
    if (place >= lines_.size()) {
        return "the end";
    }
    return files_[lines_[place].file] + ":" + std::to_string(lines_[place].number);
}

} // namespace Orvanta
