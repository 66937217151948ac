#pragma once

#include <string>

namespace Orvanta {

/// Where the core analyzer is.
struct CoreLocation {
    enum class Origin { Installed, Bundled };
    std::string path; ///< absolute
    Origin origin = Origin::Installed;
};

/// Finds the core: beside the program, where an installed one stands on this system, else the bundled one.
/// `programDirectory` is the absolute path of the running program's folder.
/// \throws ZelmException "Couldn't find orvanta"
[[nodiscard]] CoreLocation LocateCore(const std::string& programDirectory);

} // namespace Orvanta
