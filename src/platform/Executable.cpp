#include "platform/Executable.h"

#include "platform/Environment.h"

namespace Orvanta {

std::string FindExecutable(const std::string& program) {
    const auto searchPath = EnvironmentVariable("PATH");
    return searchPath ? FindExecutableIn(program, *searchPath) : std::string();
}

} // namespace Orvanta
