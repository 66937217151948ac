#include "analysis/RunPlaces.h"

#include "platform/Paths.h"

namespace Orvanta {

std::string RunPlaces::MergedFile() const {
    return JoinPath(OrvantaFolder(outputFolder), "intermodular-merged-info.Orvanta.dfo");
}

std::string OrvantaFolder(const std::string& outputFolder) {
    return JoinPath(outputFolder, ".Orvanta");
}

} // namespace Orvanta
