#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// What the core is asked to do.
enum class CoreTask {
    Analyze,          ///< find faults in the unit and write them to its output file
    ListDependencies, ///< print the files that the unit is made of
    TellVersion,      ///< print what stands behind this core
};

/// The core's command line.
struct CoreOptions {
    std::string settingsPath; ///< empty for TellVersion
    CoreTask task = CoreTask::Analyze;
};

/// Reads the arguments that follow the program's name.
/// \throws ZelmException when they are none of the accepted forms
[[nodiscard]] CoreOptions ReadCoreOptions(std::span<const std::string_view> arguments);

} // namespace Orvanta
