#include "platform/Paths.h"

#include "platform/Exceptions.h"

#include <filesystem>
#include <system_error>

namespace Orvanta {

PathRules HostPathRules() noexcept {
    return PathRules::Posix;
}

std::string CurrentDirectory() {
    std::error_code error;
    std::string directory = std::filesystem::current_path(error).string();
    if (error) {
        throw ZelmException("Couldn't ask for the current directory: " + error.message());
    }
    return directory;
}

} // namespace Orvanta
