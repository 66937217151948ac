#pragma once

#include "suppress/LineHash.h"
#include "suppress/SuppressEntry.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <unordered_set>
#include <utility>

namespace OrvlogConverter {

/// The code of the notice that a base is outdated, which is no finding.
inline constexpr const char* OutdatedBaseCode = "V014";

/// What is said of a base whose hashing rules are no longer the current ones.
inline constexpr const char* OutdatedBaseText =
    "The version of your suppress file is outdated. Appending new suppressed messages to it is not possible. Consider "
    "re-generating your suppress file to continue updating it.";

/// The accepted messages of a project, as entries each of which is held once. Reading and writing take time linear in
/// their number, but for the sorting.
class SuppressBase {
public:
    /// A new base, of the current version.
    SuppressBase() = default;

    /// \throws FilesystemException when it can't be read
    /// \throws ParseException: the path, the entry (from 1) and what is wrong with it
    [[nodiscard]] static SuppressBase Read(const std::string& path);

    /// Reads the text of a base; `name` stands for it in messages.
    /// \throws ParseException
    [[nodiscard]] static SuppressBase Parse(std::istream& text, const std::string& name);

    [[nodiscard]] std::uint32_t Version() const noexcept { return version_; }

    [[nodiscard]] bool IsOutdated() const noexcept { return version_ < CurrentBaseVersion; }

    [[nodiscard]] std::size_t Size() const noexcept { return entries_.size(); }

    [[nodiscard]] bool Contains(const SuppressEntry& entry) const { return entries_.contains(entry); }

    /// False when it is there already.
    bool Add(SuppressEntry entry) { return entries_.insert(std::move(entry)).second; }

    /// Puts the base in the place of what is at `path`, in one step: one entry a line, sorted.
    /// \throws FilesystemException "File doesn't exists: " and the path, or "Can't write to file: "
    void Write(const std::string& path) const;

private:
    std::uint32_t version_ = CurrentBaseVersion;
    std::unordered_set<SuppressEntry, SuppressEntryHash> entries_;
};

} // namespace OrvlogConverter
