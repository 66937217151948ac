#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// Whose rules a path is read by. Both are plain text work and run on both systems.
enum class PathRules {
    Posix,   ///< "/" separates; names are bytes
    Windows, ///< "/" and "\" separate; drive letters and UNC prefixes are roots
};

/// The rules of the system that the program was built for.
[[nodiscard]] PathRules HostPathRules() noexcept;

/// Whether the character stands between two components.
[[nodiscard]] bool IsSeparator(char character, PathRules rules = HostPathRules()) noexcept;
/// Whether the path means the same in every current directory: on Windows a drive or a UNC prefix and what follows.
[[nodiscard]] bool IsAbsolutePath(std::string_view path, PathRules rules = HostPathRules()) noexcept;

/// The last component; empty when the path ends in a separator.
[[nodiscard]] std::string_view FileNameOf(std::string_view path, PathRules rules = HostPathRules()) noexcept;
/// The file name without its extension.
[[nodiscard]] std::string_view StemOf(std::string_view path, PathRules rules = HostPathRules()) noexcept;
/// The final suffix of the file name, its point included; empty for "a", ".a" and "..".
[[nodiscard]] std::string_view ExtensionOf(std::string_view path, PathRules rules = HostPathRules()) noexcept;
/// What stands before the last component, without a separator at its end unless it is a root; empty for a bare name.
[[nodiscard]] std::string_view DirectoryOf(std::string_view path, PathRules rules = HostPathRules()) noexcept;

/// `path` when it is absolute, otherwise `base`, a separator and `path`.
[[nodiscard]] std::string JoinPath(std::string_view base, std::string_view path, PathRules rules = HostPathRules());

/// The path without "." components, doubled separators and, as far as they can be resolved, ".." components, by text
/// alone: links are not followed. Windows separators become "\". No separator at the end, except for a root.
[[nodiscard]] std::string NormalizePath(std::string_view path, PathRules rules = HostPathRules());

/// The form in which two names of one file are the same text: where the system's names don't regard case, in lower case
/// (ASCII letters). `path` is absolute and normalised.
[[nodiscard]] std::string ComparablePath(std::string_view path, PathRules rules = HostPathRules());

/// The current directory, asked of the system at each call.
[[nodiscard]] std::string CurrentDirectory();

/// JoinPath with the current directory, normalised.
[[nodiscard]] std::string AbsolutePath(std::string_view path);

} // namespace Orvanta
