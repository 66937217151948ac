#include "app/inspect/BuildRecords.h"

#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <cstdint>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

namespace Orvanta {

namespace {

constexpr std::string_view WrittenByPeople[] = {"CMakeLists.txt", "meson.build", "Makefile.am"};
constexpr std::string_view Generated[] = {"build.ninja", "Makefile"};
// In nanoseconds, or the system's ticks of 100: a tool writes all its files within a moment.
constexpr std::int64_t Tolerance = std::int64_t{60} * 1'000'000'000;

// The value of set(NAME "VALUE") in a file of CMake's.
std::string ValueOf(std::string_view text, const std::string& name) {
    const std::string opening = "set(" + name + " \"";
    const std::size_t at = text.find(opening);
    if (at == std::string_view::npos) {
        return "";
    }
    text.remove_prefix(at + opening.size());
    return std::string(text.substr(0, text.find('"')));
}

} // namespace

std::vector<ConfiguredCompiler> ConfiguredCompilersIn(const std::string& buildFolder) {
    std::vector<ConfiguredCompiler> compilers;
    std::error_code ignored; // no such folder: nothing is recorded
    const std::string records = JoinPath(buildFolder, "CMakeFiles");
    for (std::filesystem::directory_iterator folder(NativePath(records), ignored), end; folder != end;
         folder.increment(ignored)) {
        for (const std::string language : {"C", "CXX"}) {
            const std::string path = JoinPath(PathText(folder->path()), "CMake" + language + "Compiler.cmake");
            if (KindOf(path) != PathKind::File) {
                continue;
            }
            const std::string text = ReadWholeFile(path);
            const std::string name = "CMAKE_" + language + "_COMPILER";
            compilers.push_back({ValueOf(text, name), ValueOf(text, name + "_VERSION"), path});
        }
    }
    return compilers;
}

std::optional<std::string> CheckoutOf(std::string folder) {
    while (!PathExists(JoinPath(folder, ".git"))) {
        std::string above(DirectoryOf(folder));
        if (above.empty() || above == folder) {
            return std::nullopt;
        }
        folder = std::move(above);
    }
    return folder;
}

std::vector<std::string> BuildFilesNewerThan(const std::string& database, const std::set<std::string>& sourceFolders) {
    const std::optional<FileStamp> stamp = StampOf(database);
    std::vector<std::string> newer;
    if (!stamp) {
        return newer;
    }
    const auto look = [&](const std::string& folder, std::string_view name, std::int64_t tolerance) {
        std::string path = JoinPath(folder, name);
        const std::optional<FileStamp> file = StampOf(path);
        if (file && file->modified > stamp->modified + tolerance) {
            newer.push_back(std::move(path));
        }
    };
    for (const std::string_view name : Generated) {
        look(std::string(DirectoryOf(database)), name, Tolerance);
    }
    std::set<std::string> folders;
    for (std::string folder : sourceFolders) {
        while (folders.insert(folder).second && !PathExists(JoinPath(folder, ".git"))) {
            std::string above(DirectoryOf(folder));
            if (above.empty() || above == folder) {
                break;
            }
            folder = std::move(above);
        }
    }
    for (const std::string& folder : folders) {
        for (const std::string_view name : WrittenByPeople) {
            look(folder, name, 0);
        }
    }
    return newer;
}

} // namespace Orvanta
