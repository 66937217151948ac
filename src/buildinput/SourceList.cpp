#include "buildinput/SourceList.h"

#include "buildinput/EscapedText.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// What stands in the root of a checkout. Of git, a file in a further working tree.
constexpr const char* RootMarks[] = {".git", ".hg", ".svn"};

/// The nearest folder, this one or above, that has such a mark; no value outside every checkout.
std::optional<std::string> CheckoutRoot(std::string folder) {
    while (true) {
        for (const char* const mark : RootMarks) {
            if (LookAt(JoinPath(folder, mark)).IsThere()) {
                return folder;
            }
        }
        // The root of a file system is its own parent, or has none.
        std::string parent(DirectoryOf(folder));
        if (parent.empty() || parent.size() >= folder.size()) {
            return std::nullopt;
        }
        folder = std::move(parent);
    }
}

/// The paths that a line may mean, the likeliest first. Version control puts quotes round a path with other letters
/// than those of English, and escapes these; people put them round a path with blanks, or with backslashes that are no
/// escapes.
std::vector<std::string> Readings(std::string_view line) {
    if (line.size() < 2 || !line.starts_with('"') || !line.ends_with('"')) {
        return {std::string(line)};
    }
    const std::string_view between = line.substr(1, line.size() - 2);
    std::string decoded;
    DecodeEscapes(between, decoded);
    std::vector<std::string> readings = {std::move(decoded)};
    if (between != readings.front()) {
        readings.emplace_back(between);
    }
    return readings;
}

} // namespace

std::vector<std::string> FoldersOfLists() {
    const std::string current = CurrentDirectory();
    // Each folder once: a file of the list is looked for in all of them.
    std::vector<std::string> folders = {current};
    if (std::optional<std::string> root = CheckoutRoot(current); root && *root != current) {
        folders.push_back(std::move(*root));
    }
    // Believed only where it leads to the current folder: a program may have left another one without telling the
    // variable.
    const std::optional<std::string> spelt = EnvironmentVariable("PWD");
    if (spelt && *spelt != current && IsAbsolutePath(*spelt) && IsSameFile(*spelt, current)) {
        folders.push_back(*spelt);
    }
    return folders;
}

ListedFile FileInFolders(std::string_view path, std::span<const std::string> folders) {
    ListedFile file;
    if (IsAbsolutePath(path)) {
        file.places.push_back(NormalizePath(path));
        return file;
    }
    for (const std::string& folder : folders) {
        file.places.push_back(NormalizePath(JoinPath(folder, path)));
    }
    return file;
}

std::vector<ListedFile> ParseSourceList(std::string_view text, std::span<const std::string> folders) {
    // The mark that some editors put in front is no part of the first path.
    text = WithoutUtf8Mark(text);
    std::vector<ListedFile> files;
    while (!text.empty()) {
        const std::string_view line = Trim(TakeLine(text));
        if (line.empty()) {
            continue;
        }
        ListedFile file;
        for (const std::string& path : Readings(line)) {
            ListedFile read = FileInFolders(path, folders);
            file.places.insert(file.places.end(), read.places.begin(), read.places.end());
        }
        files.push_back(std::move(file));
    }
    return files;
}

std::vector<ListedFile> ReadSourceList(const std::string& path, std::span<const std::string> folders) {
    return ParseSourceList(ReadWholeFile(path), folders);
}

} // namespace Orvanta
