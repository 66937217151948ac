#include "platform/Files.h"

#include "platform/Exceptions.h"

namespace Orvanta {

PathKind KindOf(const std::string& path) {
    const PathAnswer answer = LookAt(path);
    if (!answer.kind) {
        throw FileException(path, answer.reason);
    }
    return *answer.kind;
}

bool PathExists(const std::string& path) {
    return KindOf(path) != PathKind::Nothing;
}

bool IsDirectory(const std::string& path) {
    return KindOf(path) == PathKind::Folder;
}

bool IsRegularFile(const std::string& path) {
    return KindOf(path) == PathKind::File;
}

} // namespace Orvanta
