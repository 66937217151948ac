#include "cppcheck/ScopedFolder.h"

#include "platform/Files.h"
#include "platform/TemporaryPlace.h"

#include <utility>

namespace Orvanta {

ScopedFolder::ScopedFolder(std::string path) : path_(std::move(path)) {
    RemoveTree(path_);
    MakeFolders(path_);
}

ScopedFolder::~ScopedFolder() {
    RemoveTree(path_);
}

} // namespace Orvanta
