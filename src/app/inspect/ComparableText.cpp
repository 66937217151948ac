#include "app/inspect/ComparableText.h"

#include "platform/LineMarker.h"
#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

ComparableText::ComparableText(std::string text) : text_(std::move(text)) {
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

bool ComparableText::TakeMarker(std::string_view line) {
    const std::optional<LineMarker> marker = ReadLineMarker(line);
    if (!marker) {
        return false; // a pragma, say
    }
    hasMarkers_ = true;
    number_ = marker->line;
    const std::string_view name = marker->quotedName;
    if (name.empty()) {
        return true; // the file stays the same
    }
    // From the back: a text comes back to the file that has included another.
    const auto known = std::find(files_.rbegin(), files_.rend(), name);
    if (known == files_.rend()) {
        files_.emplace_back(name);
        file_ = static_cast<std::uint32_t>(files_.size() - 1);
    } else {
        file_ = static_cast<std::uint32_t>(files_.rend() - known - 1);
    }
    return true;
}

std::optional<std::size_t> ComparableText::FirstDifference(const ComparableText& other) const {
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

std::string_view ComparableText::LineAt(std::size_t place) const {
    return place < lines_.size() ? std::string_view(text_).substr(lines_[place].begin, lines_[place].size)
                                 : std::string_view();
}

std::string ComparableText::OriginOf(std::size_t place) const {
    if (place >= lines_.size()) {
        return "the end";
    }
    return files_[lines_[place].file] + ":" + std::to_string(lines_[place].number);
}

} // namespace Orvanta
