#pragma once

#include "buildinput/ArgumentList.h"
#include "compilers/CompilerInfo.h"
#include "compilers/SourceArgument.h"
#include "platform/Environment.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// What a unit holds is chosen by how often it is there: a build has a hundred thousand units, but few folders,
// compilers and environments. Those are shared, and nothing is kept that can be read from the words again.

namespace Orvanta {

/// How the variables that a build input gives for an invocation stand to those of the driver.
enum class EnvironmentScope : std::uint8_t {
    Changes, ///< they go over the driver's own
    Whole,   ///< they are all that the invocation had
};

/// One source file of one compiler invocation of the build: the unit of analysis. Read-only once collected.
/// What many units share is held once.
struct CompileCommand {
    std::shared_ptr<const std::string> workingDirectory;  ///< as written
    std::shared_ptr<const std::string> absoluteDirectory; ///< where the invocation ran: absolute, not null
    ArgumentList arguments;                               ///< compiler first; response files expanded
    std::shared_ptr<const Environment> environment;       ///< the invocation's own variables; not null
    std::shared_ptr<const CompilerInfo> compiler;         ///< not null
    SourceArgument source;
    std::size_t invocation = 0; ///< number of the invocation in the input, from 1
    bool wrapped = false;       ///< a launcher stood before the compiler
    EnvironmentScope environmentScope = EnvironmentScope::Changes;

    /// The source file as the command names it.
    [[nodiscard]] std::string_view SourceFile() const { return arguments[source.index].substr(source.offset); }
};

/// The absolute, normalised path of a unit's source.
[[nodiscard]] std::string SourcePath(const CompileCommand& command);

} // namespace Orvanta
