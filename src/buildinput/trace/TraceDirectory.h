#pragma once

#include <memory>
#include <string>
#include <string_view>

// A trace tells changes of directories, and seldom where the first process began. So a directory is a path from where
// some process began, until a question for it (getcwd) or a user tells the beginning; then all that hangs on it is
// known.

namespace Orvanta {

struct ProcessOrigin;

/// Where a traced process works: an absolute path, or one that starts where its process, or one before it, began.
struct TraceDirectory {
    std::string path;                    ///< may be empty when there is a base
    std::shared_ptr<ProcessOrigin> base; ///< null: the path is absolute

    /// Follows a change of the directory. A relative path is resolved by text; ".." behind a name stays.
    void Change(std::string_view to);

    /// Makes it a path that depends on no process any more.
    void Set(std::string absolutePath);

    /// Whether the directory is still the one with which `origin` began.
    [[nodiscard]] bool IsStartOf(const std::shared_ptr<ProcessOrigin>& origin) const {
        return base == origin && path.empty();
    }
};

/// `path` taken from the directory `base`, both in the form of the traced system.
[[nodiscard]] std::string JoinTracePath(std::string_view base, std::string_view path);

/// The absolute path without "." and ".." components. Where a link stands before "..", the folder that it leads to
/// counts, as far as it still exists.
[[nodiscard]] std::string ResolveTracePath(const std::string& path);

} // namespace Orvanta
