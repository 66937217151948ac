#include "settings/ExclusionSet.h"

#include "platform/Text.h"
#include "settings/SettingsMap.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

// Lower case, with one kind of separator: a mask written for one system fits on the other too.
std::string FoldForMask(std::string_view text) {
    std::string folded = ToLowerAscii(text);
    std::replace(folded.begin(), folded.end(), '\\', '/');
    return folded;
}

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The position after the UTF-8 character at `position`.
std::size_t NextCharacter(std::string_view text, std::size_t position) {
    do {
        ++position;
    } while (position < text.size() && IsContinuationByte(text[position]));
    return position;
}

// Both folded. When the text doesn't fit behind a "*", only the last "*" takes one character more: what an earlier one
// could take instead, the last one can take as well. So no mask costs more than its length times the text's.
bool FitsMask(std::string_view text, std::string_view mask) {
    std::size_t textAt = 0;
    std::size_t maskAt = 0;
    std::size_t lastStar = std::string_view::npos;
    std::size_t starEnd = 0; // where the text taken by the last star ends
    while (textAt < text.size()) {
        if (maskAt < mask.size() && mask[maskAt] == '*') {
            lastStar = maskAt++;
            starEnd = textAt;
        } else if (maskAt < mask.size() && mask[maskAt] == '?') {
            textAt = NextCharacter(text, textAt);
            ++maskAt;
        } else if (maskAt < mask.size() && mask[maskAt] == text[textAt]) {
            ++textAt;
            ++maskAt;
        } else if (lastStar != std::string_view::npos) {
            textAt = ++starEnd;
            maskAt = lastStar + 1;
        } else {
            return false;
        }
    }
    return mask.find_first_not_of('*', maskAt) == std::string_view::npos;
}

} // namespace

void ExclusionSet::Add(std::string_view value) {
    if (HasWildcard(value)) {
        masks_.push_back({FoldForMask(value), std::string(value)});
    } else if (!value.empty()) {
        std::string prefix = NormalizePath(value, rules_);
        std::string compared = rules_ == PathRules::Windows ? ToLowerAscii(prefix) : prefix;
        prefixes_.emplace(std::move(compared), std::move(prefix));
    }
}

std::optional<std::string_view> ExclusionSet::RuleFor(std::string_view path) const {
    const std::optional<std::string_view> prefix = PrefixFor(path);
    return prefix ? prefix : MaskFor(path);
}

std::optional<std::string_view> ExclusionSet::PrefixFor(std::string_view path) const {
    // Every unit asks, and most runs have no prefix: then nothing is folded or copied.
    if (prefixes_.empty()) {
        return std::nullopt;
    }
    std::string folded;
    if (rules_ == PathRules::Windows) {
        // Only ASCII is folded, in the prefixes too: the system's table of other letters depends on the volume.
        folded = ToLowerAscii(path);
        path = folded;
    }
    // The path itself, its folder, and so on up to the root, which is its own folder.
    while (!path.empty()) {
        if (const auto prefix = prefixes_.find(path); prefix != prefixes_.end()) {
            return prefix->second;
        }
        const std::string_view parent = DirectoryOf(path, rules_);
        if (parent.size() == path.size()) {
            break;
        }
        path = parent;
    }
    return std::nullopt;
}

std::optional<std::string_view> ExclusionSet::MaskFor(std::string_view path) const {
    // The same for masks: folding a path costs more than the question.
    if (masks_.empty()) {
        return std::nullopt;
    }
    const std::string folded = FoldForMask(path);
    const auto mask = std::find_if(masks_.begin(), masks_.end(),
                                   [&folded](const Mask& candidate) { return FitsMask(folded, candidate.folded); });
    return mask == masks_.end() ? std::nullopt : std::optional<std::string_view>(mask->written);
}

} // namespace Orvanta
