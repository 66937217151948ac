#pragma once

#include "cache/ResultStore.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// A folder of results that any number of runs and machines use at once.
//
// Each result is a file, named by its key, in one of 256 folders by the first two digits. A file is written under a
// name of its own and renamed, so that whoever reads finds a whole one or none; nobody locks anything, as locks are
// what network file systems do worst. Two runs that write one key write the same. What is damaged is told by its
// checksum, which is the reader's business.
//
// A file's time of modification says when it was last used; it is set at most once in `FreshFor`. The least recently
// used go first.

namespace Orvanta {

/// A folder of results.
class CacheFolder : public ResultStore {
public:
    /// The folder need not be there. Files of others in it stay.
    explicit CacheFolder(std::string folder) : folder_(std::move(folder)) {}

    [[nodiscard]] std::optional<std::string> Find(const Digest& key) override;
    /// \throws FileException
    void Store(const Digest& key, std::string_view bytes, Existing existing) override;
    /// Removes the least recently used of the entries beside that of `key`, which have a 256th of the bytes.
    void MakeRoom(const Digest& key, std::uint64_t largest) override;

    /// What is kept.
    struct Contents {
        std::size_t entries = 0;
        std::uint64_t bytes = 0;
    };

    [[nodiscard]] Contents Count() const;

    /// Removes the least recently used entries until the rest is no larger than `largest` bytes, and what writers that
    /// are gone have left. Returns what was removed.
    [[nodiscard]] Contents Trim(std::uint64_t largest) const;

    /// Removes the entries for which `isWanted` says no. Returns what was removed.
    Contents RemoveUnless(const std::function<bool(std::string_view bytes)>& isWanted) const;

private:
    std::string folder_;
};

} // namespace Orvanta
