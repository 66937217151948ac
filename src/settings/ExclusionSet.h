#pragma once

#include "platform/Paths.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// Which source paths are not to be analyzed: path prefixes, matched by whole components, and masks of "*" (any run of
/// characters, separators too) and "?" (one character), matched against the whole path. Masks regard neither the case
/// of ASCII letters nor which of the two separators stands there; prefixes do where the system's paths do.
/// Fast for thousands of entries: a prefix costs one look-up per component of the path.
/// Once filled, any number of threads may ask.
class ExclusionSet {
public:
    /// An empty set, which matches nothing. `rules` are those of the system that the paths are of.
    explicit ExclusionSet(PathRules rules = HostPathRules()) : rules_(rules) {}

    /// A mask when the value holds a wildcard, else an absolute path prefix, which need not be normalised. An empty
    /// value adds nothing.
    void Add(std::string_view value);

    /// `path` is absolute and normalised.
    [[nodiscard]] bool Matches(std::string_view path) const { return RuleFor(path).has_value(); }

    /// The entry that matches, as long as the set is not changed: a mask as it was given, a prefix normalised.
    [[nodiscard]] std::optional<std::string_view> RuleFor(std::string_view path) const;

    /// Whether it excludes nothing.
    [[nodiscard]] bool IsEmpty() const noexcept { return prefixes_.empty() && masks_.empty(); }

private:
    // Look-ups by a view: the prefixes of a path are parts of it, and none is copied.
    struct PrefixHash {
        using is_transparent = void;

        std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
    };

    struct Mask {
        std::string folded;
        std::string written;
    };

    // The prefix that is the path or one of the folders above it.
    [[nodiscard]] std::optional<std::string_view> PrefixFor(std::string_view path) const;
    // The first mask that fits the whole path. Costs one look at each mask.
    [[nodiscard]] std::optional<std::string_view> MaskFor(std::string_view path) const;

    PathRules rules_;
    // By what is compared: normalised, folded where the system folds; the value is normalised alone, for people.
    std::unordered_map<std::string, std::string, PrefixHash, std::equal_to<>> prefixes_;
    std::vector<Mask> masks_;
};

} // namespace Orvanta
