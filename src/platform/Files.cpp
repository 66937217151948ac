#include "platform/Files.h"

#include "platform/Exceptions.h"
#include "platform/LinkEnd.h"
#include "platform/Paths.h"

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

bool IsSameFile(const std::string& left, const std::string& right) {
    // Two paths that lead to nothing are not one file.
    const std::optional<FileIdentity> identity = IdentityOf(left);
    return identity && identity == IdentityOf(right);
}

std::string TargetOf(const std::string& path) {
    if (PathExists(path)) {
        return ResolveLinks(path);
    }
    // A link to nothing is followed by text; the folder it leads to may be there, and is resolved.
    const std::string end = EndOfLinks(path);
    const std::string folder(DirectoryOf(end));
    return JoinPath(ResolveLinks(folder.empty() ? CurrentDirectory() : folder), FileNameOf(end));
}

} // namespace Orvanta
