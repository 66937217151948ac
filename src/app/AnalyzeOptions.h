#pragma once

// The options of `analyze`.
//
// They are one table: the parser's declarations, the help and the way into the record all come from its rows, so that
// a new option is one row and one field. The record holds what was given, as it was given: words become numbers, modes
// and paths where they are needed, after a settings file has had its say. So an absent option can be told from one that
// has the default's value.

#include "analysis/ReplayBundles.h"
#include "render/FindingGate.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace args {
class Subparser;
}

namespace Orvanta {

/// What `--regenerate-depend-info` asks for.
enum class RegenerateDependInfoOption {
    SkipAnalysis, ///< the dependency information is made, and nothing is analyzed
    RunAnalysis,  ///< it is made before the analysis
};

/// How a run shows on a terminal where it stands. Elsewhere there are the lines alone.
enum class ProgressForm {
    Status, ///< one line that changes
    Lines,  ///< one for each file
    Both,   ///< the one below the others
};

/// The value of --cfg that has the project's own settings file searched.
inline constexpr const char* FindSettingsFile = "auto";

/// The name of a compilation database where nothing names another.
inline constexpr const char* DefaultInput = "compile_commands.json";

/// The name of a shard's part where nothing names another.
inline constexpr const char* DefaultPart = "report.orvpart";

/// Those options of `analyze` that the help leaves out.
struct HiddenAnalyzeOptions {
    std::vector<std::string> includeDirectories;
    std::optional<std::string> compilerParameters; ///< of `sourceFile`
    std::optional<std::string> sourceFile;
    std::optional<std::string> dumpJson;
    std::optional<std::string> dumpLog;
    bool dumpFiles = false;
    std::vector<std::string> analyzeOnly;
    std::optional<std::string> dependencyFile;
    bool printStdout = false;
    std::optional<std::string> traceDirectory;
};

/// The options of `analyze` as given; absent ones keep the settings file's values or the defaults.
struct AnalyzeOptions : HiddenAnalyzeOptions {
    std::optional<std::string> threads;
    bool incremental = false;
    bool resume = false;
    std::optional<std::string> outputFile;
    std::optional<std::string> settingsFile;
    std::optional<std::string> suppressFile;
    bool quiet = false;
    std::optional<std::string> progress;
    bool verbose = false;
    std::optional<std::string> show;
    std::optional<std::string> failOn;
    std::optional<std::string> stats;
    std::optional<std::string> shard; ///< "K/N"
    std::optional<std::string> costs;
    std::optional<std::string> inputFile;
    std::optional<std::string> sourceList;
    bool allowEmpty = false;
    std::vector<std::string> compilers;
    std::vector<std::string> compilerFolders;
    std::vector<std::string> environment; ///< "VAR=VALUE"
    std::vector<std::string> excludePaths;
    std::optional<std::string> analysisMode;
    std::optional<std::string> engines; ///< as ParseEngineList reads them
    std::optional<std::string> sourceTreeRoot;
    std::optional<std::string> preprocessor;
    std::optional<std::string> platform;
    std::optional<std::string> corePath;
    std::optional<std::string> timeout;    ///< seconds
    std::optional<std::string> maxOutput;  ///< bytes, or with a suffix
    std::optional<std::string> maxMemory;  ///< likewise
    std::optional<std::string> launcher;   ///< a command string
    std::optional<std::string> shared;     ///< a folder
    std::optional<std::string> bundle;     ///< a folder
    std::optional<std::string> bundleSlow; ///< seconds
    std::vector<std::string> bundleSources;
    bool scrub = false;
    std::optional<std::string> cachePlace;
    std::optional<std::string> cacheTokenFile;
    bool cacheReadOnly = false;
    std::optional<std::string> cacheSize; ///< bytes, or with a suffix
    std::optional<std::string> rulesConfig;
    bool ignoreCcache = false;
    bool analyzeSystemPaths = false;
    bool intermodular = false; ///< also for one of its stages
    std::optional<std::string> intermodularStage;
    std::optional<std::string> regenerateDependInfo;
};

/// The build input: what `--file` names or the default, and of a folder the database in it.
[[nodiscard]] std::string BuildInputOf(const AnalyzeOptions& options);

/// The files that the options name to be read. Absent ones are not named; the build input has a name of its own then.
[[nodiscard]] std::vector<std::optional<std::string>> NamedInputs(const AnalyzeOptions& options);

/// Declares the options of `analyze` on its parser and parses the rest of the command line.
/// \throws args::Error and the parser library's other exceptions
[[nodiscard]] AnalyzeOptions ParseAnalyzeOptions(args::Subparser& parser);

/// Declares on a subcommand's parser those options of `analyze` that it shares, by their long names, behind what it has
/// declared itself, and parses the rest of the command line. Hidden ones stay hidden.
/// \throws args::Error and the parser library's other exceptions
[[nodiscard]] AnalyzeOptions ParseSharedOptions(args::Subparser& parser, std::span<const std::string_view> names);

/// How many findings are shown at the end.
/// \throws ZelmException
[[nodiscard]] std::size_t FindingsToShow(const AnalyzeOptions& options);

/// What `--timeout` and `--max-output` set.
/// \throws ZelmException
[[nodiscard]] UnitLimits LimitsOf(const AnalyzeOptions& options);

/// The bytes of `--max-memory`; absent when it was not given.
/// \throws ZelmException
[[nodiscard]] std::optional<std::uint64_t> MaxMemoryOf(const AnalyzeOptions& options);

/// What `--bundle` and the options beside it ask for; absent without it.
/// \throws ZelmException
[[nodiscard]] std::optional<BundleWishes> BundlesOf(const AnalyzeOptions& options);

/// The bytes that the value of an option stands for: a number, and K, M or G behind it.
/// \throws ZelmException
[[nodiscard]] std::uint64_t RequireByteCount(const std::string& text, const std::string& option);

/// What `--cache-size` sets; absent without it.
/// \throws ZelmException
[[nodiscard]] std::optional<std::uint64_t> CacheSizeOf(const AnalyzeOptions& options);

/// The gate of `--fail-on`; absent when it was not given.
/// \throws OrvlogConverter::ConfigException
[[nodiscard]] std::optional<OrvlogConverter::FindingGate> GateOf(const AnalyzeOptions& options);

/// The form of `--progress`, or the default.
/// \throws ZelmException for a word that means nothing
[[nodiscard]] ProgressForm ProgressFormOf(const AnalyzeOptions& options);

/// What the word of `--regenerate-depend-info` asks for; absent without the option.
/// \throws ZelmException for a word that means nothing
[[nodiscard]] std::optional<RegenerateDependInfoOption> RegenerationOf(const AnalyzeOptions& options);

} // namespace Orvanta
