#include "compilers/ParsedCommand.h"

#include "platform/Paths.h"

namespace Orvanta {

namespace {

// Drivers of the GCC family read the file of this name that lies behind a search prefix, without any flag for it.
constexpr const char* DefaultSpecs = "specs";

} // namespace

void DropPrecompiled(ParsedCommand& command) {
    const auto first = command.keptArguments.begin() + static_cast<std::ptrdiff_t>(command.precompiled.firstArgument);
    command.keptArguments.erase(first, first + static_cast<std::ptrdiff_t>(command.precompiled.arguments));
    // The compiler will not read it any more: a change of it must not count as one of the unit.
    std::erase(command.filesRead, command.precompiled.path);
    command.precompiled = {};
}

std::vector<std::string> FilesNamedByFlags(const ParsedCommand& command) {
    std::vector<std::string> files = command.filesRead;
    for (const std::string& prefix : command.searchPrefixes) {
        files.push_back(JoinPath(prefix, DefaultSpecs));
    }
    // The compiler tries a relative name behind each prefix before it takes it as it stands. Which of them exist is not
    // asked: one that appears later must count.
    for (const std::string& specs : command.specFiles) {
        if (!IsAbsolutePath(specs)) {
            for (const std::string& prefix : command.searchPrefixes) {
                files.push_back(JoinPath(prefix, specs));
            }
        }
        files.push_back(specs);
    }
    return files;
}

} // namespace Orvanta
