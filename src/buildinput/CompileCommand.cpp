#include "buildinput/CompileCommand.h"

#include "platform/Paths.h"

namespace Orvanta {

std::string SourcePath(const CompileCommand& command) {
    return NormalizePath(JoinPath(*command.absoluteDirectory, command.SourceFile()));
}

} // namespace Orvanta
