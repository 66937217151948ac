#include "analysis/CoreLocator.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/InstallFolders.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

constexpr const char* CoreName = "Orvanta.exe";
// Where the build and the package put the bundled core, seen from the program's folder.
constexpr const char* BundledCoreFolder = "../lib/orvanta";

} // namespace

CoreLocation LocateCore(const std::string& programDirectory) {
    // First, so that a package that comes with its own core uses that one, whatever else is installed.
    const std::string beside = JoinPath(programDirectory, CoreName);
    if (LookAt(beside).IsThere()) {
        return {beside, CoreLocation::Origin::Installed};
    }
    for (const std::string& folder : InstalledCoreFolders()) {
        const std::string installed = JoinPath(folder, CoreName);
        if (LookAt(installed).IsThere()) {
            return {installed, CoreLocation::Origin::Installed};
        }
    }
    // Last: whoever has installed one wants that one.
    const std::string bundled = NormalizePath(JoinPath(JoinPath(programDirectory, BundledCoreFolder), CoreName));
    if (LookAt(bundled).IsThere()) {
        return {bundled, CoreLocation::Origin::Bundled};
    }
    throw ZelmException("Couldn't find orvanta");
}

} // namespace Orvanta
