#include "settings/RunSettings.h"

#include "platform/Files.h"
#include "platform/Paths.h"

#include <iterator>
#include <utility>

namespace Orvanta {

namespace {

// Headers and sources that come with the compiler, not with the project.
constexpr std::string_view DefaultExclusionMasks[] = {
    R"(?:\program files (x86)\windows kits\*)",           R"(?:\program files (x86)\microsoft visual studio *\vc\*)",
    R"(?:\program files\microsoft visual studio *\vc\*)", R"(?:\program files (x86)\microsoft visual studio\*)",
    R"(?:\program files\microsoft visual studio\*)",
};

// What counts as a compiler by its name; settings and options add to it.
constexpr const char* DefaultCompilerNames[] = {
    "x86_64-linux-gnu-gcc",
    "x86_64-linux-gnu-g++",
    "cc",
    "gcc",
    "clang",
    "c++",
    "g++",
    "clang++",
    "armcc",
    "armclang",
    "armcl",
    "cl",
    "arm-none-eabi-gcc",
    "arm-none-eabi-g++",
    "ccache",
    "iccarm",
    "qcc",
    "xc8-cc",
};

// A key that may stand once: what stood there before gives way.
void ReplaceSetting(SettingsMap& settings, const std::string& key, std::string value) {
    settings.erase(key);
    settings.emplace(key, std::move(value));
}

} // namespace

RunSettings::RunSettings() : compilerNames(std::begin(DefaultCompilerNames), std::end(DefaultCompilerNames)) {
    for (const std::string_view mask : DefaultExclusionMasks) {
        exclusions.Add(mask);
    }
}

void ApplySettings(RunSettings& run, const SettingsMap& settings) {
    for (const auto& [key, value] : settings) {
        // All of them count, from wherever they come: an option adds to what the file excludes.
        if (key == "exclude-path") {
            run.exclusions.Add(value);
            run.userSettings.emplace(key, value);
            continue;
        }
        if (key == "compiler") {
            // Added to the known names. It stays among the user's settings too, for the core to read.
            run.compilerNames.push_back(value);
        } else if (key == "response-file-quoting") {
            run.nativeResponseFiles = value == "native";
        } else if (key == "cache") {
            run.cache.place = value;
            continue; // where results are kept is no part of them
        } else if (key == "launcher") {
            run.launcherNames.push_back(value);
        }
        ReplaceSetting(run.userSettings, key, value);
    }
}

void OverrideSetting(RunSettings& run, const std::string& key, std::string value) {
    ReplaceSetting(run.userSettings, key, std::move(value));
}

bool MayStart(const RunSettings& run, const std::string& program) {
    return run.compilerFolders.IsEmpty() || run.compilerFolders.Matches(NormalizePath(ResolveLinks(program)));
}

std::optional<std::string> ExclusionRule(const RunSettings& run, std::string_view sourcePath) {
    // An exclusion counts also for what `--analyze-only` names.
    if (!run.onlyPaths.IsEmpty() && !run.onlyPaths.Matches(sourcePath)) {
        return "--analyze-only";
    }
    const std::optional<std::string_view> rule = run.exclusions.RuleFor(sourcePath);
    return rule ? std::optional("exclude-path " + std::string(*rule)) : std::nullopt;
}

bool IsExcluded(const RunSettings& run, std::string_view sourcePath) {
    return ExclusionRule(run, sourcePath).has_value();
}

} // namespace Orvanta
