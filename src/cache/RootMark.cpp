#include "cache/RootMark.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

// A control that no path and no message of a core has in it.
constexpr char MarkCharacter = '\x01';

std::string Replaced(std::string_view text, std::string_view what, std::string_view by) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t found = std::min(text.find(what, at), text.size());
        result += text.substr(at, found - at);
        result += found < text.size() ? by : std::string_view();
        at = found + what.size();
    }
    return result;
}

bool IsMarked(std::string_view text) {
    return text.find(MarkCharacter) != std::string_view::npos;
}

// Whether a component ends before the character: "/src" is no part of "/src2".
bool EndsComponent(std::string_view text, std::size_t at) {
    return at == text.size() || std::string_view("/\\\"' \t\r\n;:,)").find(text[at]) != std::string_view::npos;
}

} // namespace

RootMark::RootMark(std::string_view root, PathRules rules) : root_(root), rules_(rules) {
    while (!root_.empty() && IsSeparator(root_.back(), rules)) {
        root_.pop_back(); // of "/" nothing is left: a tree that is the whole disk has no other place
    }
    if (root_.empty()) {
        return;
    }
    spellings_.push_back(root_);
    if (rules == PathRules::Windows) {
        spellings_.push_back(Replaced(root_, "\\", "/"));
        spellings_.push_back(Replaced(root_, "\\", "\\\\")); // in a literal
    }
}

RootMark::Place RootMark::FindRoot(std::string_view text, std::size_t from, bool onlyBehindQuote) const {
    Place first = {text.size(), 0};
    for (const std::string& spelling : spellings_) {
        for (std::size_t at = text.find(spelling, from); at < first.begin; at = text.find(spelling, at + 1)) {
            const bool isBegun = !onlyBehindQuote || (at > 0 && text[at - 1] == '"');
            if (isBegun && EndsComponent(text, at + spelling.size())) {
                first = {at, spelling.size()};
                break;
            }
        }
    }
    return first;
}

void RootMark::Add(DigestBuilder& builder, std::string_view text, bool onlyBehindQuote) const {
    std::uint64_t parts = 0;
    for (std::size_t at = 0; at <= text.size(); ++parts) {
        const Place root = FindRoot(text, at, onlyBehindQuote);
        // By parts with their lengths: no text can pass for one with a mark in it.
        builder.Add(text.substr(at, root.begin - at));
        at = root.begin + std::max<std::size_t>(root.size, 1);
    }
    builder.Add(parts);
}

void RootMark::AddText(DigestBuilder& builder, std::string_view text) const {
    Add(builder, text, true);
}

void RootMark::AddValue(DigestBuilder& builder, std::string_view value) const {
    Add(builder, value, false);
}

void RootMark::MarkPath(std::string& path) const {
    // A drive or a folder may be spelt in another case there.
    const auto isRoot = [this, &path](const std::string& spelling) {
        const std::string_view begin = std::string_view(path).substr(0, spelling.size());
        return (rules_ == PathRules::Windows ? EqualsIgnoringCase(begin, spelling) : begin == spelling) &&
               (path.size() == spelling.size() || IsSeparator(path[spelling.size()], rules_));
    };
    const auto spelling = std::find_if(spellings_.begin(), spellings_.end(), isRoot);
    if (spelling != spellings_.end()) {
        path.replace(0, spelling->size(), 1, MarkCharacter);
    }
}

bool RootMark::MarkText(std::string& text) const {
    if (IsMarked(text)) {
        return false;
    }
    if (spellings_.empty()) {
        return true;
    }
    std::string marked;
    for (std::size_t at = 0; at < text.size();) {
        const Place root = FindRoot(text, at, false);
        marked.append(text, at, root.begin - at);
        marked.append(root.size > 0 ? 1U : 0U, MarkCharacter);
        at = root.begin + std::max<std::size_t>(root.size, 1);
    }
    text = std::move(marked);
    return true;
}

bool RootMark::Mark(OrvlogConverter::ReportMessage& message) const {
    if (!MarkText(message.message)) {
        return false;
    }
    for (OrvlogConverter::MessagePosition& position : message.positions) {
        if (IsMarked(position.file)) {
            return false;
        }
        MarkPath(position.file);
    }
    return true;
}

std::string RootMark::Marked(std::string text) const {
    static_cast<void>(MarkText(text));
    return text;
}

void RootMark::Unmark(std::string& text) const {
    if (IsMarked(text)) {
        text = Replaced(text, {&MarkCharacter, 1}, root_);
    }
}

void RootMark::Unmark(OrvlogConverter::ReportMessage& message) const {
    Unmark(message.message);
    for (OrvlogConverter::MessagePosition& position : message.positions) {
        Unmark(position.file);
    }
}

} // namespace Orvanta
