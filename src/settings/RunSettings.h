#pragma once

#include "platform/Environment.h"
#include "settings/ExclusionSet.h"
#include "settings/SettingsMap.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What a unit may take before it fails. Without limits unless the user sets them.
struct UnitLimits {
    std::optional<std::chrono::seconds> time;      ///< `--timeout`: of all that is done with it in one stage
    std::optional<std::uint64_t> outputBytes = {}; ///< `--max-output`: on either output of each child
};

/// Where results are kept for all runs and machines that share the place.
struct CacheSettings {
    std::string place;     ///< a folder, absolute, or the address of a server; empty: there is no cache
    std::string tokenFile; ///< holds what the server is to be told; empty: nothing
    bool isReadOnly = false;
    std::uint64_t largestSize = std::uint64_t{5} << 30U; ///< bytes
};

/// What one run of the driver is asked to do: defaults, then the settings file, then the options laid over it.
/// Read-only once the run has started.
struct RunSettings {
    /// Starts with the default exclusion masks and the default compiler names.
    RunSettings();

    SettingsMap userSettings; ///< keys for the core: the settings file's, with those of given options in their place
    ExclusionSet exclusions;  ///< by "exclude-path" and `--exclude-path`, and the default masks
    ExclusionSet onlyPaths;   ///< `--analyze-only`: when not empty, other paths are left out in silence
    std::vector<std::string> compilerNames;  ///< names of programs that count as compilers
    std::vector<std::string> launcherNames;  ///< of programs that only start a compiler, beside the known ones
    std::vector<std::string> compilerFilter; ///< `--compiler`: when not empty, only these compilers' invocations count
    ExclusionSet compilerFolders;            ///< `--compiler-path`: when not empty, no program elsewhere is started
    std::vector<std::string> extraIncludes;  ///< `-I`, absolute
    std::vector<std::string>
        childLauncher;              ///< `--launcher`: stands before each compiler and core; its program absolute
    Environment environmentChanges; ///< `--env`: laid over every invocation's environment
    std::optional<std::string> traceDirectory; ///< where a build began whose trace does not tell it; absolute
    UnitLimits limits;
    CacheSettings cache;
    std::optional<std::uint64_t>
        maxMemory; ///< `--max-memory`: bytes for all children together; absent: what is granted
    bool ignoreCcache = false;
    bool nativeResponseFiles = false;  ///< read response files as the unit's compiler does
    bool analyzeSystemPaths = false;   ///< also units inside the folders of -isystem and the like
    bool showCoreOutputOfMsvc = false; ///< show what the core prints for units of cl and clang-cl too
};

/// Takes over what a settings file or an option says: into the user settings, where "exclude-path" may stand several
/// times and of any other key the last value counts, every "exclude-path" into the exclusion set as well, and every
/// "compiler" and "launcher" into the known names. `settings` is not `run.userSettings` itself.
void ApplySettings(RunSettings& run, const SettingsMap& settings);

/// Puts a given option's value in the place of the settings file's values of that key.
void OverrideSetting(RunSettings& run, const std::string& key, std::string value);

/// Whether `--compiler-path` lets a program be started for the build: what its path leads to, links followed, lies in
/// one of the folders. Asks the system. Any thread may ask.
[[nodiscard]] bool MayStart(const RunSettings& run, const std::string& program);

/// What leaves out a unit with this source, an absolute and normalised path, as a user reads it: one of the exclusions,
/// or `--analyze-only`; absent when it is not left out. Any thread may ask.
[[nodiscard]] std::optional<std::string> ExclusionRule(const RunSettings& run, std::string_view sourcePath);

/// Whether there is such a rule.
[[nodiscard]] bool IsExcluded(const RunSettings& run, std::string_view sourcePath);

} // namespace Orvanta
