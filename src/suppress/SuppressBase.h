#pragma once

// The base of accepted findings: one JSON document that people keep with their sources and merge by hand.
//
// Hence one entry a line, sorted: two branches that accept different findings merge without a conflict, and a base that
// did not change is not written at all. An entry has no line number. A finding is recognised by its file, code and text
// and by hashes of its source line and the two around it, so that it stays accepted when code above it grows.
//
// What else people write into a base or an entry, such as a reason, stays when it is written again.
//
// Entries are read as a stream and held once, in a hash set. The version says by which rules the hashes were made; a
// base of older rules is still matched by them, but not added to, as one base can't hold entries of two kinds.

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

    /// By which rules the hashes of its entries were made.
    [[nodiscard]] std::uint32_t Version() const noexcept { return version_; }

    /// Whether nothing may be added any more.
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
    std::string members_; // others that the document has, each behind ", "
    std::unordered_set<SuppressEntry, SuppressEntryHash> entries_;
};

} // namespace OrvlogConverter
