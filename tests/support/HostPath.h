#pragma once

#include "platform/Paths.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Orvanta {

/// A path written the POSIX way as this system writes it: where paths follow the rules of Windows, an absolute one gets
/// a drive.
inline std::string HostPath(std::string_view path) {
    std::string host(path);
    if (HostPathRules() == PathRules::Windows) {
        if (host.starts_with('/')) {
            host.insert(0, "C:");
        }
        std::replace(host.begin(), host.end(), '/', '\\');
    }
    return host;
}

} // namespace Orvanta
