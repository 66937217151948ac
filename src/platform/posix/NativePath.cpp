#include "platform/NativePath.h"

namespace Orvanta {

std::filesystem::path NativePath(std::string_view path) {
    return path;
}

std::string PathText(const std::filesystem::path& path) {
    return path.native();
}

} // namespace Orvanta
