#include "bundled/SystemFolders.h"

#include "platform/Text.h"

#include <string>

namespace Orvanta {

namespace {

// With the slash at the end: "/usr/includes" is no system folder.
constexpr std::string_view PosixFolders[] = {
    "/usr/include/", "/usr/lib/",           "/usr/lib32/",      "/usr/lib64/",
    "/usr/libx32/",  "/usr/local/include/", "/opt/iarsystems/", "/opt/ti/",
};

// Behind the drive letter; in lower case, since these paths are compared so.
constexpr std::string_view WindowsFolders[] = {
    "/program files/", "/program files (x86)/", "/keil/arm/", "/keil_v5/arm/", "/ti/ccs", "/iar/",
};

// By the look of the path: a unit that was preprocessed for Windows has such paths on Linux too.
bool HasDrive(std::string_view path) {
    return path.size() > 2 && path[1] == ':' && (path[2] == '/' || path[2] == '\\');
}

// A Windows path in the form of the table: without its drive, in lower case, with "/" alone.
std::string WithoutDrive(std::string_view path) {
    std::string folded = ToLowerAscii(path.substr(2));
    for (char& character : folded) {
        if (character == '\\') {
            character = '/';
        }
    }
    return folded;
}

} // namespace

bool IsInSystemFolder(std::string_view path, std::string_view sourcePath) {
    if (HasDrive(path)) {
        const std::string folded = WithoutDrive(path);
        // A project that lies in such a folder, such as an example of the compiler's maker, is to be analyzed all the
        // same.
        const std::string source = HasDrive(sourcePath) ? WithoutDrive(sourcePath) : std::string();
        for (const std::string_view folder : WindowsFolders) {
            if (folded.starts_with(folder) && !source.starts_with(folder)) {
                return true;
            }
        }
        return false;
    }
    for (const std::string_view folder : PosixFolders) {
        if (path.starts_with(folder) && !sourcePath.starts_with(folder)) {
            return true;
        }
    }
    return false;
}

} // namespace Orvanta
