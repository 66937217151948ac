#include "app/OptionChecks.h"

#include "app/LauncherOptions.h"
#include "app/OutputCheck.h"
#include "app/ShardOptions.h"
#include "app/StageOptions.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "settings/EngineList.h"
#include "settings/SettingsMap.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

namespace Orvanta {

namespace {

// For a file that is only read later: a wrong name is told before hours of work.
void RequireExisting(const std::optional<std::string>& path, const char* message) {
    if (path && !PathExists(*path)) {
        throw ZelmException(message + *path);
    }
}

// As an unset variable of a script gives it: it would match everything, or nothing.
void RefuseEmpty(std::span<const std::string> values, const char* option) {
    if (std::any_of(values.begin(), values.end(), [](const std::string& value) { return value.empty(); })) {
        throw ZelmException(std::string("Wrong value of ") + option + ": it is empty");
    }
}

void RefuseEmpty(const std::optional<std::string>& value, const char* option) {
    if (value) {
        RefuseEmpty(std::span(&*value, 1), option);
    }
}

// Two options that ask for different runs.
void RefuseTogether(bool first, bool second, const char* names) {
    if (first && second) {
        throw ZelmException(std::string("Flags ") + names + " cannot be used together");
    }
}

void RequireKnownEngines(const std::optional<std::string>& engines) {
    try {
        static_cast<void>(ParseEngineList(engines.value_or("")));
    } catch (const ZelmException& error) {
        throw ZelmException(std::string("Wrong value of --engines: ") + error.what());
    }
}

void RefuseEmptyValues(const AnalyzeOptions& options) {
    RefuseEmpty(options.excludePaths, "--exclude-path");
    RefuseEmpty(options.analyzeOnly, "--analyze-only");
    RefuseEmpty(options.compilers, "--compiler");
    RefuseEmpty(options.compilerFolders, "--compiler-path");
    RefuseEmpty(options.includeDirectories, "--include-dir");
    RefuseEmpty(options.sourceTreeRoot, "--sourcetree-root");
    RefuseEmpty(options.rulesConfig, "--rules-config");
    RefuseEmpty(options.engines, "--engines");
    RefuseEmpty(options.preprocessor, "--preprocessor");
    RefuseEmpty(options.platform, "--platform");
    RefuseEmpty(options.bundle, "--bundle");
    RefuseEmpty(options.bundleSources, "--bundle-unit");
    RefuseEmpty(options.cachePlace, "--cache");
    RefuseEmpty(options.shared, "--shared");
}

void RequireNamedFiles(const AnalyzeOptions& options) {
    RequireExisting(options.cacheTokenFile, "Token file doesn't exist: ");
    if (options.settingsFile && *options.settingsFile != FindSettingsFile) {
        RequireExisting(AbsolutePath(*options.settingsFile), "Config file doesn't exist: ");
    }
    for (const std::string& folder : options.compilerFolders) {
        // A misspelt one would let nothing be started, and a mask would let more be started than is seen.
        if (HasWildcard(folder) || !IsDirectory(folder)) {
            throw ZelmException("Wrong value of --compiler-path: \"" + folder + "\", expected a folder");
        }
    }
    RequireExisting(options.sourceList, "List of files to analyze doesn't exist: ");
    RequireExisting(options.dependencyFile, "Dependency file doesn't exist: ");
    RequireExisting(options.corePath, "Specified path to Orvanta doesn't exist: ");
}

void RefuseContradictions(const AnalyzeOptions& options) {
    RefuseTogether(options.incremental, options.sourceList.has_value(), "--incremental and --source-files");
    RefuseTogether(options.sourceList.has_value(), options.intermodular, "--source-files and --intermodular");
    RefuseTogether(options.incremental, options.intermodular, "--incremental and --intermodular");
    RefuseTogether(options.incremental, options.dependencyFile.has_value(), "--incremental and --dep-file");
    RefuseTogether(options.dependencyFile.has_value(), options.intermodular, "--dep-file and --intermodular");
    // Their runs keep what they have finished anyway, or are made of stages.
    RefuseTogether(options.resume, options.incremental, "--resume and --incremental");
    RefuseTogether(options.resume, options.sourceList.has_value(), "--resume and --source-files");
    RefuseTogether(options.resume, options.dependencyFile.has_value(), "--resume and --dep-file");
    RefuseTogether(options.resume, options.intermodular, "--resume and --intermodular");
    RefuseTogether(options.resume, options.regenerateDependInfo.has_value(), "--resume and --regenerate-depend-info");
    // What links the units is the core's own: nobody can replace names in it.
    RefuseTogether(options.scrub, options.intermodular, "--scrub and --intermodular");
}

} // namespace

void RequireUsableStats(const AnalyzeOptions& options) {
    RefuseEmpty(options.stats, "--stats");
    const std::string output = options.outputFile.value_or(options.shard ? DefaultPart : "");
    if (options.stats && !output.empty() && AbsolutePath(*options.stats) == AbsolutePath(output)) {
        throw ZelmException("Flags --output-file and --stats name one file: " + *options.stats);
    }
}

void ValidateAnalyzeOptions(const AnalyzeOptions& options) {
    RefuseEmptyValues(options);
    RequireKnownEngines(options.engines);
    RequireNamedFiles(options);
    RefuseContradictions(options);
    ValidateShardOptions(options);
    ValidateLauncherOptions(options);
    ValidateStageOptions(options);
    if (options.bundle && LookAt(*options.bundle).IsThere() && !IsDirectory(*options.bundle)) {
        throw ZelmException("Wrong value of --bundle: \"" + *options.bundle + "\", expected a folder");
    }
    // Asked for their errors only: the run asks again for the values.
    static_cast<void>(RegenerationOf(options));
    static_cast<void>(ProgressFormOf(options));
    static_cast<void>(FindingsToShow(options));
    static_cast<void>(LimitsOf(options));
    static_cast<void>(CacheSizeOf(options));
    static_cast<void>(MaxMemoryOf(options));
    static_cast<void>(BundlesOf(options));
    static_cast<void>(GateOf(options));
    RequireUsableStats(options);
    for (const std::optional<std::string>& output :
         {options.outputFile, options.dumpJson, options.dumpLog, options.stats}) {
        RequireNoInput(output.value_or(""), NamedInputs(options));
    }
}

} // namespace Orvanta
