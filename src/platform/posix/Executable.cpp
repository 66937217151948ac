#include "platform/Executable.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "platform/posix/SearchPath.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace Orvanta {

std::string FindAlong(std::string_view program, std::string_view searchPath, const std::string& directory) {
    if (program.empty()) {
        return {};
    }
    for (std::size_t begin = 0; begin <= searchPath.size();) {
        const std::size_t end = std::min(searchPath.find(':', begin), searchPath.size());
        // An empty folder is the current one: the candidate is then the bare name, and becomes one of `directory`.
        std::string candidate = JoinPath(searchPath.substr(begin, end - begin), program);
        if (!IsAbsolutePath(candidate)) {
            candidate = JoinPath(AbsolutePath(directory), candidate);
        }
        if (IsExecutableFile(candidate)) {
            return candidate;
        }
        begin = end + 1;
    }
    return {};
}

std::string FindExecutableIn(const std::string& program, const std::string& searchPath) {
    return FindAlong(program, searchPath, {});
}

std::string ProgramFileOf(const std::string& path) {
    return path;
}

bool IsExecutableFile(const std::string& path) {
    struct stat status {};

    // A folder may have the right to be "executed" too.
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::string ProgramDirectory() {
    std::error_code error;
    // Not from the words of the command line, which anybody who starts us chooses.
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    if (error) {
        throw FileException("/proc/self/exe", error.message());
    }
    return std::string(DirectoryOf(program));
}

} // namespace Orvanta
