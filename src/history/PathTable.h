#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// The paths that dependency lists name, each kept once and known by its number. A path that a core has reported
/// relative to the directory of its unit is kept behind that directory.
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
    [[nodiscard]] std::uint32_t Add(std::string_view path, std::uint64_t directorySize);

    /// Adds a path that is not in the table, which is not looked at.
    std::uint32_t AddNew(std::string_view path, std::uint64_t directorySize);

    [[nodiscard]] std::uint32_t Size() const noexcept { return static_cast<std::uint32_t>(entries_.size()); }

    [[nodiscard]] std::string_view Path(std::uint32_t number) const;

    [[nodiscard]] std::uint64_t DirectorySize(std::uint32_t number) const { return entries_[number].directorySize; }

    /// The path as the core reported it.
    [[nodiscard]] std::string_view Reported(std::uint32_t number) const;

    [[nodiscard]] const std::string& Text() const noexcept { return text_; }

    [[nodiscard]] const std::vector<Entry>& Entries() const noexcept { return entries_; }

private:
    std::string text_;
    std::vector<Entry> entries_;
    std::unordered_multimap<std::uint64_t, std::uint32_t> numbers_; // by hash, of the first paths; made when needed
    std::uint32_t indexed_ = 0;                                     // how many of them
};

} // namespace Orvanta
