#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Orvanta {

/// Replaces the names in paths by words that tell nothing, one word for one name wherever it stands: two paths of one
/// folder still lie in one folder, and an extension stays, as what a file is follows from it. Paths of the system
/// (/usr, /opt, C:\Program Files and the like) stay: they tell of no project, and a core knows system headers by them.
/// One thread uses an object.
class PathScrubber {
public:
    /// A text that is a path as a whole. It is known from then on.
    [[nodiscard]] std::string Path(std::string_view path);

    /// A text in which paths stand among other words, such as what a compiler prints: whatever has a separator in it is
    /// one, and so is the name of a known file.
    [[nodiscard]] std::string Words(std::string_view text);

    /// A text of which only that may be changed which surely is a path: one that is known, or lies in the
    /// folder of one.
    [[nodiscard]] std::string KnownPaths(std::string_view text);

    /// A word of a command line: the path in it, behind the flag.
    [[nodiscard]] std::string Argument(std::string_view word);

private:
    enum class Certainty { Sure, Likely };
    [[nodiscard]] std::string Rewrite(std::string_view text, Certainty wanted);
    [[nodiscard]] bool IsPath(std::string_view token, Certainty wanted) const;
    [[nodiscard]] const std::string& NameFor(std::string_view name);

    std::unordered_map<std::string, std::string> names_; // to what stands for them
    std::unordered_set<std::string> paths_;              // as they were handed in, and the names of their files
    std::unordered_set<std::string> folders_;            // of those that are absolute
};

} // namespace Orvanta
