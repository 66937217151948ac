#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A file that the user has listed.
struct ListedFile {
    std::vector<std::string> places; ///< absolute paths where it may lie, the likeliest first; not empty
};

/// The folders from which the relative paths of a list may count: the current one; the root of the checkout that it
/// lies in, as version control prints paths; and the current one as the shell spells it, where a link leads there and
/// ".." means another folder to people than to the system.
[[nodiscard]] std::vector<std::string> FoldersOfLists();

/// A file in one of the folders. Nothing is looked at.
[[nodiscard]] ListedFile FileInFolders(std::string_view path, std::span<const std::string> folders);

/// Reads a list of one path a line. Blanks around a path and blank lines don't count; "#" has no meaning. A path may
/// stand between double quotes, with the escapes of C, as git prints those that are not plain. What does not exist is
/// listed as well: a unit may have been made of it.
/// \throws FileException with the path of the list
[[nodiscard]] std::vector<ListedFile> ReadSourceList(const std::string& path, std::span<const std::string> folders);

/// The files that the text of a list names.
[[nodiscard]] std::vector<ListedFile> ParseSourceList(std::string_view text, std::span<const std::string> folders);

} // namespace Orvanta
