#include "analysis/PrecompiledHeader.h"

#include "platform/Files.h"
#include "platform/Paths.h"

#include <cstddef>
#include <iterator>

namespace Orvanta {

std::optional<std::string> FindPrecompiledForm(const std::string& header, Log& log) {
    for (const char* const ending : {".gch/c++", ".gch/c", ".gch"}) {
        const std::string path = header + ending;
        const bool exists = LookAt(path).IsThere();
        log.VerboseLine("  Source file at path: '" + path + "' exists=" + (exists ? "true" : "false"));
        if (exists) {
            return path;
        }
    }
    return std::nullopt;
}

void IncludePlainHeader(ParsedCommand& command, const std::string& directory) {
    const std::string path = command.precompiled.path;
    const auto place = static_cast<std::ptrdiff_t>(command.precompiled.firstArgument);
    DropPrecompiled(command);
    const std::string header = path.substr(0, path.size() - ExtensionOf(path).size());
    // Where no header stands beside it, the compiler looks for one of its name among the folders of headers.
    const bool isBeside = PathExists(JoinPath(directory, header));
    const std::string words[] = {"-include", isBeside ? header : std::string(FileNameOf(header))};
    command.keptArguments.insert(command.keptArguments.begin() + place, std::begin(words), std::end(words));
    command.forcedIncludes.push_back(words[1]);
}

} // namespace Orvanta
