#include "platform/Executable.h"

#include "platform/Environment.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "platform/windows/SearchPath.h"
#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <windows.h>

namespace Orvanta {

namespace {

// What a search takes for its program.
using Test = bool (*)(const std::string& path);

// Anything but a folder; what can't be told counts as absent.
bool IsFile(const std::string& path) {
    const PathAnswer answer = LookAt(path);
    return answer.IsThere() && answer.kind != PathKind::Folder;
}

bool IsThere(const std::string& path) {
    return LookAt(path).IsThere();
}

// The path itself before those with an extension; empty when none passes.
std::string FirstThatPasses(const std::string& path, std::string_view extensions, Test test) {
    if (test(path)) {
        return path;
    }
    while (!extensions.empty()) {
        const std::string_view extension = TakeUpTo(extensions, ";");
        if (!extension.empty() && test(path + std::string(extension))) {
            return path + std::string(extension);
        }
    }
    return {};
}

struct Search {
    std::string_view program;
    std::string_view extensions;
    std::string directory;
    Test test;
};

// Through the folders of the search path in their order; empty when none has it.
std::string Walk(const Search& search, std::string_view searchPath) {
    if (search.program.empty()) {
        return {};
    }
    while (!searchPath.empty()) {
        const std::string_view folder = TakeUpTo(searchPath, ";");
        // Unlike elsewhere, an empty entry does not stand for the current folder.
        if (folder.empty()) {
            continue;
        }
        std::string candidate = JoinPath(folder, search.program);
        if (!IsAbsolutePath(candidate)) {
            candidate = JoinPath(AbsolutePath(search.directory), candidate);
        }
        std::string found = FirstThatPasses(candidate, search.extensions, search.test);
        if (!found.empty()) {
            return found;
        }
    }
    return {};
}

// Empty where the driver's own environment has no PATHEXT: then no extension is tried.
std::string OwnExtensions() {
    return EnvironmentVariable("PATHEXT").value_or("");
}

} // namespace

std::string WithExtension(const std::string& path, std::string_view extensions) {
    return FirstThatPasses(path, extensions, &IsFile);
}

std::string FindAlong(std::string_view program, std::string_view searchPath, std::string_view extensions,
                      const std::string& directory) {
    return Walk({program, extensions, directory, &IsFile}, searchPath);
}

std::string FindExecutableIn(const std::string& program, const std::string& searchPath) {
    return Walk({program, OwnExtensions(), {}, &IsThere}, searchPath);
}

std::string ProgramFileOf(const std::string& path) {
    const std::string normal = NormalizePath(path); // one program, however its separators are written
    std::string file = WithExtension(normal, OwnExtensions());
    return file.empty() ? normal : file;
}

bool IsExecutableFile(const std::string& path) {
    return !WithExtension(path, OwnExtensions()).empty();
}

std::string ProgramDirectory() {
    std::string program(MAX_PATH, '\0');
    DWORD length = ::GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    // The system fills the room and says nothing more when it is too small.
    while (length == program.size()) { // cut off
        program.resize(2 * program.size());
        length = ::GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
    }
    if (length == 0) {
        throw ZelmException("Couldn't ask for the program's path: " + SystemReason(::GetLastError()));
    }
    program.resize(length);
    return std::string(DirectoryOf(FromActiveCodePage(program)));
}

} // namespace Orvanta
