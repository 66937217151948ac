#pragma once

#include "cache/Digest.h"
#include "platform/Paths.h"
#include "report/ReportMessage.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Takes the place of a source tree out of what is known about its texts, so that two checkouts share it. Text work
/// alone; nothing is looked up.
class RootMark {
public:
    /// `root` is absolute and normalised. Empty: nothing is replaced, and results hold for this place only.
    explicit RootMark(std::string_view root, PathRules rules = HostPathRules());

    /// Adds a preprocessed text, in which the root counts as the mark where a literal, or the name in a line marker,
    /// begins with it.
    void AddText(DigestBuilder& builder, std::string_view text) const;

    /// Adds a path, or a setting that may hold one, in which the root counts as the mark wherever it stands.
    void AddValue(DigestBuilder& builder, std::string_view value) const;

    /// Replaces the root by the mark in the paths and the text of a message. False for one that holds the mark already.
    [[nodiscard]] bool Mark(OrvlogConverter::ReportMessage& message) const;
    /// The same with a text that may hold paths.
    [[nodiscard]] bool MarkText(std::string& text) const;
    /// A copy with marks, to compare it with that of another place; a text that holds a mark already stays as it is.
    [[nodiscard]] std::string Marked(std::string text) const;
    /// The same with a path.
    void MarkPath(std::string& path) const;

    /// Puts the root in the place of each mark.
    void Unmark(OrvlogConverter::ReportMessage& message) const;
    void Unmark(std::string& text) const;

private:
    // Where the root, as one of these is spelt, next stands in the text behind a quote, or anywhere; and how long it
    // is. The end of the text when nowhere.
    struct Place {
        std::size_t begin;
        std::size_t size;
    };

    [[nodiscard]] Place FindRoot(std::string_view text, std::size_t from, bool onlyBehindQuote) const;
    void Add(DigestBuilder& builder, std::string_view text, bool onlyBehindQuote) const;

    std::string root_;
    std::vector<std::string> spellings_; // as it may stand in a text
    PathRules rules_;
};

} // namespace Orvanta
