#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace Orvanta {

/// Which source paths are not to be analyzed: path prefixes, matched by whole components, and masks of "*" (any run of
/// characters, separators too) and "?" (one character). Masks don't regard letter case; prefixes do where the system's
/// paths do. Fast for thousands of entries: a prefix costs one look-up per component of the path.
/// Once filled, any number of threads may ask.
class ExclusionSet {
public:
    /// A mask when the value holds a wildcard, else an absolute path prefix.
    void Add(std::string_view value);

    /// `path` is absolute and normalised.
    [[nodiscard]] bool Matches(std::string_view path) const;

    [[nodiscard]] bool IsEmpty() const noexcept { return prefixes_.empty() && masks_.empty(); }

private:
    std::unordered_set<std::string> prefixes_; // normalised, folded where the system folds
    std::vector<std::string> masks_;           // in lower case
};

} // namespace Orvanta
