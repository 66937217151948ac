#pragma once

#include "analysis/UnitSettings.h"
#include "buildinput/CompileCommand.h"
#include "compilers/ParsedCommand.h"
#include "platform/Environment.h"
#include "platform/Process.h"
#include "settings/SettingsMap.h"

#include <cstddef>
#include <memory>
#include <string>

namespace Orvanta {

class Compiler;

/// Whether a unit is to be analyzed.
enum class UnitVerdict {
    Analyze,
    ExcludedBySetting,
    InSystemFolder, ///< its source lies in a folder of -isystem or the like
};

/// Where a unit's standard comes from.
enum class StandardOrigin {
    Flag,
    Settings, ///< the user's
    Compiler, ///< which was asked
    Fallback, ///< the compiler has not answered
};

/// Where a unit's platform comes from.
enum class PlatformOrigin {
    Command,  ///< a flag, or the compiler's family
    Settings, ///< the user's
    Compiler, ///< which was asked for its target
    Default,  ///< nothing has told it
};

/// All that is decided about the run of one unit. Nothing is decided again when it is executed, so that whoever prints
/// a plan shows what a run does.
struct UnitPlan {
    const CompileCommand* command = nullptr;                 ///< not null
    std::size_t unit = 0;                                    ///< position among the run's units
    std::string sourcePath;                                  ///< absolute, normalised
    UnitVerdict verdict = UnitVerdict::Analyze;              ///< a stage that collects, or lists, takes all units
    std::string verdictRule;                                 ///< what leaves it out; empty when nothing does
    std::shared_ptr<const Compiler> model;                   ///< of the compiler's family; not null
    ParsedCommand parsed;                                    ///< with what the run adds to every command
    std::shared_ptr<const EnvironmentBlock> environment;     ///< of the compiler; not null
    std::shared_ptr<const EnvironmentBlock> coreEnvironment; ///< not null
    UnitFiles files;
    Arguments preprocessing; ///< the compiler's command; may have more words than a command line holds
    SettingsMap settings;    ///< what the core is told
    StandardOrigin standardOrigin = StandardOrigin::Flag;
    PlatformOrigin platformOrigin = PlatformOrigin::Command;

    /// The folder in which the build runs the compiler; both programs of the unit are run there.
    [[nodiscard]] const std::string& Directory() const noexcept { return *command->absoluteDirectory; }
};

} // namespace Orvanta
