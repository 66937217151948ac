#include "history/PathShortener.h"

#include "platform/Files.h"
#include "platform/Paths.h"

#include <string_view>

namespace Orvanta {

namespace {

// Whether the path has no component that says nothing, and none that goes up. Nearly all are so.
bool IsPlain(std::string_view path) {
    for (std::size_t at = 0; at + 1 < path.size(); ++at) {
        if (IsSeparator(path[at]) && (path[at + 1] == '.' || IsSeparator(path[at + 1]))) {
            return false;
        }
    }
    return HostPathRules() == PathRules::Posix || path.find('/') == std::string_view::npos;
}

} // namespace

std::string PathShortener::Shorten(const std::string& path) {
    if (path.empty() || IsPlain(path)) {
        return path;
    }
    // Nothing goes up, so the text alone is enough.
    if (path.find("..") == std::string::npos) {
        return NormalizePath(path);
    }
    const std::string folder(DirectoryOf(path));
    const std::string shortened = folders_.Get(folder, [&folder] {
        std::string normalized = NormalizePath(folder);
        // Whether a link stands on the way shows in where both lead.
        return IsSameFile(folder, normalized) ? normalized : folder;
    });
    return JoinPath(shortened, FileNameOf(path));
}

} // namespace Orvanta
