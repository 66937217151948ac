#include "platform/InstallFolders.h"

namespace Orvanta {

// There is no system-wide place on this system: an installed core stands beside the program.
std::vector<std::string> InstalledCoreFolders() {
    return {};
}

} // namespace Orvanta
