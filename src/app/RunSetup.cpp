#include "app/RunSetup.h"

#include "app/LauncherOptions.h"
#include "app/OutputCheck.h"
#include "app/ProjectSettings.h"
#include "app/StageOptions.h"
#include "cache/ResultStore.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "report/Exceptions.h"
#include "report/FinishedReport.h"
#include "report/ReportReader.h"
#include "report/WholeFile.h"
#include "settings/AnalysisMode.h"
#include "settings/SettingKeys.h"
#include "settings/SettingsFile.h"

#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// The settings reader does not know these keys as paths, so they are still as written.
void MakeOwnPathsAbsolute(SettingsMap& settings, const std::string& settingsFile) {
    const std::string folder(DirectoryOf(settingsFile));
    for (const char* const key : {"output-file", "cache", SourceTreeRootKey}) {
        const auto [first, last] = settings.equal_range(key);
        for (auto entry = first; entry != last; ++entry) {
            if (!entry->second.empty() && !IsServerAddress(entry->second)) {
                entry->second = NormalizePath(JoinPath(folder, entry->second));
            }
        }
    }
}

// An option that was not given leaves the file's value.
void OverrideIfGiven(RunSettings& settings, const char* key, const std::optional<std::string>& value) {
    if (value) {
        OverrideSetting(settings, key, *value);
    }
}

// The last change of a name counts. An empty value is one: it sets the variable to nothing.
void AddEnvironmentChange(RunSettings& settings, const std::string& change) {
    const std::size_t equalsSign = change.find('=');
    if (equalsSign == 0 || equalsSign == std::string::npos) {
        throw ZelmException("Wrong value of --env: \"" + change + "\", expected VAR=VALUE");
    }
    settings.environmentChanges[change.substr(0, equalsSign)] = change.substr(equalsSign + 1);
}

// A key that means nothing to us may mean something to a core: it is handed on all the same.
void WarnAboutKeys(const SettingsMap& settings, const std::string& path,
                   const std::function<void(const std::string&)>& warn) {
    for (auto entry = settings.begin(); entry != settings.end(); entry = settings.upper_bound(entry->first)) {
        if (const std::string warning = KeyWarning(path, entry->first); !warning.empty()) {
            warn(warning);
        }
    }
}

// Lays what was given over what the settings file says. Relative paths count from the current folder.
void ApplyOptions(RunSettings& settings, const AnalyzeOptions& options) {
    // As the number that the core takes; the file's value has become one when it was read.
    if (options.analysisMode) {
        OverrideSetting(settings, "analysis-mode", std::to_string(ParseAnalysisMode(*options.analysisMode)));
    }
    OverrideIfGiven(settings, "preprocessor", options.preprocessor);
    OverrideIfGiven(settings, "platform", options.platform);
    OverrideIfGiven(settings, "engines", options.engines);
    if (options.rulesConfig) {
        OverrideSetting(settings, "rules-config", AbsolutePath(*options.rulesConfig));
    }
    if (options.sourceTreeRoot) {
        OverrideSetting(settings, SourceTreeRootKey, AbsolutePath(*options.sourceTreeRoot));
    }
    SettingsMap excluded;
    for (const std::string& value : options.excludePaths) {
        excluded.emplace("exclude-path", PathOrMask(value));
    }
    ApplySettings(settings, excluded);
    for (const std::string& name : options.compilers) {
        // A name given by hand is a compiler's, known or not, and the only ones that count are those given.
        settings.compilerNames.push_back(name);
        settings.compilerFilter.push_back(name);
    }
    for (const std::string& folder : options.compilerFolders) {
        settings.compilerFolders.Add(ResolveLinks(AbsolutePath(folder)));
    }
    for (const std::string& value : options.analyzeOnly) {
        settings.onlyPaths.Add(PathOrMask(value));
    }
    for (const std::string& change : options.environment) {
        AddEnvironmentChange(settings, change);
    }
    for (const std::string& directory : options.includeDirectories) {
        settings.extraIncludes.push_back(AbsolutePath(directory));
    }
    if (options.traceDirectory) {
        settings.traceDirectory = AbsolutePath(*options.traceDirectory);
    }
    settings.limits = LimitsOf(options);
    if (options.cachePlace) {
        settings.cache.place =
            IsServerAddress(*options.cachePlace) ? *options.cachePlace : AbsolutePath(*options.cachePlace);
    }
    settings.cache.tokenFile = options.cacheTokenFile.value_or("");
    settings.cache.isReadOnly = options.cacheReadOnly;
    settings.cache.largestSize = CacheSizeOf(options).value_or(settings.cache.largestSize);
    const bool isShaped = options.cacheReadOnly || options.cacheSize || options.cacheTokenFile;
    if (isShaped && settings.cache.place.empty()) {
        throw ZelmException("--cache-readonly, --cache-size and --cache-token-file need --cache");
    }
    settings.maxMemory = MaxMemoryOf(options);
    settings.childLauncher = LauncherOf(options);
    settings.ignoreCcache = options.ignoreCcache;
    settings.analyzeSystemPaths = options.analyzeSystemPaths;
    settings.showCoreOutputOfMsvc = options.printStdout;
}

OrvlogConverter::LineFormat FormatOfLines(const RunSettings& settings) {
    return LastValue(settings.userSettings, "new-output-format").value_or("yes") == "no"
               ? OrvlogConverter::LineFormat::Raw
               : OrvlogConverter::LineFormat::Json;
}

// What a document says of what was looked at.
std::string CheckedMember(const RunSettings& settings) {
    return "{\"analysis-mode\": " + LastValue(settings.userSettings, "analysis-mode").value_or(DefaultAnalysisMode) +
           "}";
}

/// A report that is not there before its end.
class WholeReport : public OrvlogConverter::ReportOutput {
public:
    WholeReport(const std::string& path, OrvlogConverter::ReportForm form) : report_(path, form) {}

    void AddMember(const std::string& key, std::string_view value) { report_.AddMember(key, value); }

    bool Write(const OrvlogConverter::ReportMessage& message) override { return report_.Write(message); }

    void Commit() override {}

    void End() override { report_.End(); }

private:
    OrvlogConverter::FinishedReport report_;
};

} // namespace

std::string PathOrMask(const std::string& value) {
    return HasWildcard(value) ? value : AbsolutePath(value);
}

RunSettings MakeRunSettings(const AnalyzeOptions& options, const std::function<void(const std::string& line)>& warn) {
    RunSettings settings;
    if (const std::optional<std::string> path = SettingsFileOf(options)) {
        SettingsMap fromFile = ReadSettingsFile(*path);
        WarnAboutKeys(fromFile, *path, warn);
        if (*options.settingsFile == FindSettingsFile) {
            // Before anything of it is taken over.
            DropUntrusted(fromFile, *path);
        }
        MakeOwnPathsAbsolute(fromFile, *path);
        ApplySettings(settings, fromFile);
    }
    ApplyOptions(settings, options);
    return settings;
}

unsigned ThreadCount(const AnalyzeOptions& options) {
    if (!options.threads) {
        // Not the machine's: a container or an affinity mask may leave fewer.
        return AvailableProcessors();
    }
    const std::string& text = *options.threads;
    const std::optional<unsigned> threads = WholeNumber<unsigned>(text);
    if (!threads || *threads == 0) {
        throw ZelmException("Wrong value of --threads: \"" + text + "\", expected a number of 1 or more");
    }
    return *threads;
}

std::string ReportPath(const AnalyzeOptions& options, const RunSettings& settings) {
    if (!MakesReport(options)) {
        return "";
    }
    if (options.shard) { // what the settings name is where the report of all is to go
        std::string path = AbsolutePath(options.outputFile.value_or(DefaultPart));
        RequireNoInput(path, NamedInputs(options));
        return path;
    }
    if (options.outputFile) {
        if (options.outputFile->empty()) {
            // As an unset variable of a script gives it: the findings must not go to standard output instead.
            throw OrvlogConverter::FilesystemException("Empty filepath");
        }
        if (*options.outputFile == OrvlogConverter::StandardStreamPath) {
            return "";
        }
        return AbsolutePath(*options.outputFile);
    }
    std::string path = LastValue(settings.userSettings, "output-file").value_or("");
    RequireNoInput(path, NamedInputs(options));
    return path;
}

std::string OutputFolderOf(const std::string& reportPath) {
    return reportPath.empty() ? CurrentDirectory() : std::string(DirectoryOf(reportPath));
}

std::string SourceTreeRoot(const RunSettings& settings) {
    return LastValue(settings.userSettings, SourceTreeRootKey).value_or("");
}

std::unique_ptr<OrvlogConverter::ReportOutput> OpenReport(const std::string& reportPath, const RunSettings& settings) {
    using namespace OrvlogConverter;
    if (reportPath.empty()) {
        return std::make_unique<ConsoleOutput>(FormatOfLines(settings));
    }
    // The name decides, also against the settings: readers judge by the name too.
    if (IsJsonDocumentName(reportPath)) {
        return std::make_unique<JsonOutput>(reportPath, CheckedMember(settings));
    }
    return std::make_unique<LineOutput>(reportPath, FormatOfLines(settings));
}

std::unique_ptr<OrvlogConverter::ReportOutput> OpenWholeReport(const std::string& reportPath,
                                                               const RunSettings& settings) {
    using namespace OrvlogConverter;
    if (reportPath.empty()) {
        return std::make_unique<ConsoleOutput>(FormatOfLines(settings));
    }
    if (!IsJsonDocumentName(reportPath)) {
        const bool isRaw = FormatOfLines(settings) == LineFormat::Raw;
        return std::make_unique<WholeReport>(reportPath, isRaw ? ReportForm::RawLines : ReportForm::JsonLines);
    }
    auto report = std::make_unique<WholeReport>(reportPath, ReportForm::JsonDocument);
    report->AddMember("version", "1");
    report->AddMember("checked", CheckedMember(settings));
    return report;
}

} // namespace Orvanta
