#pragma once

#include "history/Numbers.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// The paths that dependency lists name, each kept once and known by its number. A path that a core has reported
/// relative to the directory of its unit is kept behind that directory.
///
/// All paths stand in one text, behind each other: a build has a hundred thousand of them, and a string for each would
/// take twice the memory, and an allocation when the file is read.
class PathTable {
public:
    struct Entry {
        std::uint64_t end = 0;           ///< of the path, in the text of all of them
        std::uint64_t directorySize = 0; ///< how much of it, from its beginning, was not reported
    };

    PathTable() = default;

    /// From what `Text` and `Entries` gave.
    PathTable(std::string text, std::vector<Entry> entries);

    /// Whether the two can be those of a table.
    [[nodiscard]] static bool AreSound(std::string_view text, const std::vector<Entry>& entries);

    /// The number of a path, new or old.
    [[nodiscard]] FileNumber Add(std::string_view path, std::uint64_t directorySize);

    /// How many paths there are; numbers go from 0 on.
    [[nodiscard]] std::size_t Size() const noexcept { return entries_.size(); }

    /// The whole path. A view into the table, which lasts until a path is added.
    [[nodiscard]] std::string_view Path(FileNumber file) const;

    /// How much of the path, from its beginning, the core did not report.
    [[nodiscard]] std::uint64_t DirectorySize(FileNumber file) const { return entries_[PlaceOf(file)].directorySize; }

    /// The path as the core reported it.
    [[nodiscard]] std::string_view Reported(FileNumber file) const;

    /// All paths, one behind the other, as the constructor takes them.
    [[nodiscard]] const std::string& Text() const noexcept { return text_; }

    /// By file, as the constructor takes them.
    [[nodiscard]] const std::vector<Entry>& Entries() const noexcept { return entries_; }

private:
    std::string text_;
    std::vector<Entry> entries_;
    std::unordered_multimap<std::uint64_t, FileNumber> numbers_; // by hash, of the first paths; made when needed
    std::size_t indexed_ = 0;                                    // how many of them
};

} // namespace Orvanta
