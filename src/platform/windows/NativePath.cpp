#include "platform/NativePath.h"

#include "platform/windows/WideText.h"

namespace Orvanta {

std::filesystem::path NativePath(std::string_view path) {
    return WidePath(path);
}

} // namespace Orvanta
