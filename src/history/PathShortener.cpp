#include "history/PathShortener.h"

#include "platform/Files.h"
#include "platform/Paths.h"

namespace Orvanta {

std::string PathShortener::Shorten(const std::string& path) {
    if (path.empty() || path.find("..") == std::string::npos) {
        return path.empty() ? path : NormalizePath(path);
    }
    const std::string folder(DirectoryOf(path));
    const std::string shortened = folders_.Get(folder, [&folder] {
        std::string normalized = NormalizePath(folder);
        return IsSameFile(folder, normalized) ? normalized : folder;
    });
    return JoinPath(shortened, FileNameOf(path));
}

} // namespace Orvanta
