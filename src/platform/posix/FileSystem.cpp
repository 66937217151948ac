#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/LinkEnd.h"
#include "platform/Paths.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

// Throws with the system's words when there is an error.
void Check(const std::string& path, const std::error_code& error) {
    if (error) {
        throw FileException(path, error.message());
    }
}

} // namespace

PathAnswer LookAt(const std::string& path) {
    struct stat status {};

    // Of a text with a zero byte in it, the system would see the beginning.
    if (path.find('\0') != std::string::npos) {
        return {PathKind::Nothing};
    }
    if (::stat(path.c_str(), &status) != 0) {
        return IsAbsence(errno) ? PathAnswer{PathKind::Nothing} : PathAnswer{std::nullopt, SystemReason(errno)};
    }
    if (S_ISDIR(status.st_mode)) {
        return {PathKind::Folder};
    }
    return {S_ISREG(status.st_mode) ? PathKind::File : PathKind::Other};
}

std::optional<std::uint64_t> FileSize(const std::string& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) == 0) {
        return static_cast<std::uint64_t>(status.st_size);
    }
    if (!IsAbsence(errno)) {
        throw FileException(path, SystemReason(errno));
    }
    return std::nullopt;
}

std::string ResolveLinks(const std::string& path) {
    std::error_code error;
    const fs::path resolved = fs::canonical(path, error);
    return error ? path : resolved.string();
}

std::string EndOfLinks(std::string path) {
    constexpr int LongestChain = 40; // where the system itself gives up
    // Step by step: the library's function fails where a link leads to nothing, which is what is asked for here.
    for (int links = 0; links < LongestChain; ++links) {
        std::error_code isNoLink;
        const std::string target = fs::read_symlink(path, isNoLink).string();
        if (isNoLink) {
            return path;
        }
        // A relative link is meant from the folder in which it stands.
        path = JoinPath(DirectoryOf(path), target);
    }
    throw FileException(path, SystemReason(ELOOP));
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, status.st_nlink};
    }
    if (!IsAbsence(errno)) {
        throw FileException(path, SystemReason(errno));
    }
    return std::nullopt;
}

bool IsReadableByOthers(const std::string& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) {
        throw FileException(path, SystemReason(errno));
    }
    return (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

void MakeFolders(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    Check(path, error);
}

void CopyContents(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    Check(to, error);

    struct stat original {};

    // The bytes are what counts: where the rights can't be given, the copy stays without them.
    const Descriptor copy = OpenFile(to, O_WRONLY);
    if (copy.IsOpen() && ::stat(from.c_str(), &original) == 0) {
        static_cast<void>(GiveRightsOf(original, copy.Number()));
    }
}

} // namespace Orvanta
