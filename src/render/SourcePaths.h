#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Paths of reports as platforms want them: from the root of the source tree, with "/" between the names. Reports of
/// both systems are known by the look of their paths.
class SourcePaths {
public:
    /// `root` is as the user gave it; empty stands for the current folder.
    /// A relative one is taken from the current folder of this moment.
    explicit SourcePaths(const std::string& root);

    /// The path from the root, for a file below it; absent for one that lies elsewhere.
    [[nodiscard]] std::optional<std::string> BelowRoot(std::string_view file) const;

    /// The path from the root where there is one, else the path as it is, with "/" between its names. The text lasts
    /// until the next call. One thread at a time.
    [[nodiscard]] const std::string& Shown(std::string_view file) const;

    /// The root, absolute, as an address that ends in "/".
    [[nodiscard]] std::string RootAddress() const;

private:
    std::string given_;    // without a separator at its end
    std::string absolute_; // likewise, with "/" between its names
    // Findings of one file mostly stand together.
    mutable std::string lastFile_;
    mutable std::string lastShown_;
};

/// A path with "/" between its names as a reference: relative, or a "file:" address when it is absolute. What an
/// address can't hold is percent-encoded, byte by byte.
[[nodiscard]] std::string AddressOf(std::string_view path);

} // namespace OrvlogConverter
