#include "platform/LockFile.h"

#include "platform/Hash.h"

namespace Orvanta {

std::string LockFile::FileName(const std::string& key) {
    return ".orvlock-" + std::to_string(Fnv1a(key));
}

} // namespace Orvanta
