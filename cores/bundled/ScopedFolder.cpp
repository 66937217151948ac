#include "bundled/ScopedFolder.h"

#include "platform/Files.h"
#include "platform/TemporaryPlace.h"

#include <utility>

namespace Orvanta {

ScopedFolder::ScopedFolder(std::string path) : path_(std::move(path)) {
    // A name that is used again in each run may hold what a killed one has left.
    RemoveTree(path_);
    MakeFolders(path_);
}

ScopedFolder::~ScopedFolder() {
    RemoveTree(path_);
}

} // namespace Orvanta
