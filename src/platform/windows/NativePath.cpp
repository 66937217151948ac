#include "platform/NativePath.h"

#include "platform/windows/WideText.h"

namespace Orvanta {

std::filesystem::path NativePath(std::string_view path) {
    return WidePath(path);
}

std::string PathText(const std::filesystem::path& path) {
    return FromWide(path.native());
}

} // namespace Orvanta
