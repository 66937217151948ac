#include "analysis/RunPlaces.h"

#include "platform/Paths.h"

namespace Orvanta {

std::string OrvantaFolder(const std::string& outputFolder) {
    return JoinPath(outputFolder, ".Orvanta");
}

} // namespace Orvanta
