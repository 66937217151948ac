#include "platform/NativePath.h"

namespace Orvanta {

std::filesystem::path NativePath(std::string_view path) {
    return path;
}

} // namespace Orvanta
