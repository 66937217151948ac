#pragma once

#include "platform/FileStamp.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvanta {

/// Files that are looked for among those that units are made of. One that is there is known by what the system says it
/// is, so that any path to it will do; one that is gone by its path, with the links of what is left of it resolved.
class WantedFiles {
public:
    /// `paths` are absolute. Looks at each.
    explicit WantedFiles(std::span<const std::string> paths);

    /// The places, among the paths, of those that lead to the file with this path and stamp.
    [[nodiscard]] std::vector<std::size_t> PlacesOf(const std::string& path,
                                                    const std::optional<FileStamp>& stamp) const;

    /// Whether nothing is there.
    [[nodiscard]] bool IsMissing(std::size_t place) const { return isMissing_[place]; }

private:
    std::unordered_map<std::string, std::vector<std::size_t>> byPath_;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::vector<std::size_t>> byFile_;
    std::vector<bool> isMissing_;
};

} // namespace Orvanta
