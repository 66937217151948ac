#include "analysis/UnitSettings.h"

#include "compilers/Compiler.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "settings/AnalysisMode.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* DefaultPlatform = "x64";

// How the core reads a truth value.
std::string YesOrNo(bool value) {
    return value ? "yes" : "no";
}

// All values of the key give way to this one.
void Replace(SettingsMap& settings, const std::string& key, std::string value) {
    settings.erase(key);
    settings.emplace(key, std::move(value));
}

} // namespace

Language UnitLanguage(const ParsedCommand& command) {
    if (command.language) {
        return *command.language;
    }
    // A C++ driver takes every source for C++, a ".c" too.
    constexpr std::array<std::string_view, 3> CppCompilers = {"g++", "clang++", "c++"};
    const std::string_view compiler = FileNameOf(command.compilerPath);
    if (std::any_of(CppCompilers.begin(), CppCompilers.end(),
                    [&](std::string_view name) { return ContainsIgnoringCase(compiler, name); })) {
        return Language::Cpp;
    }
    // With letter case: ".C" is C++ to the compilers of Unix.
    return ExtensionOf(command.sourceFile) == ".c" ? Language::C : Language::Cpp;
}

SettingsMap BuildUnitSettings(const SettingsMap& userSettings, const Compiler& model, const ParsedCommand& command,
                              const std::string& standard, const UnitFiles& files) {
    // All of them, those too that only the core knows.
    SettingsMap settings = userSettings;
    const std::pair<const char*, std::string> defaults[] = {
        {"preprocessor", std::string(model.Name())},
        {"platform", command.platformWord.empty() ? DefaultPlatform : command.platformWord},
        {"analysis-mode", DefaultAnalysisMode},
        {"funsigned-char", YesOrNo(command.unsignedChar)},
        {"fshort-float", YesOrNo(command.effects.Has(FlagEffect::ShortFloat))},
        {"fshort-double", YesOrNo(command.effects.Has(FlagEffect::ShortDouble))},
        {"std", standard},
        {"new-output-format", "yes"},
    };
    // Not `emplace` alone: in a map of several values it would add a second one.
    const auto addDefault = [&settings](const char* key, const std::string& value) {
        if (!settings.contains(key)) {
            settings.emplace(key, value);
        }
    };
    for (const auto& [key, value] : defaults) {
        addDefault(key, value);
    }
    // A key of that family alone.
    if (IsMsvcFamily(command.compilerType)) {
        addDefault("msvc-await", YesOrNo(command.effects.Has(FlagEffect::Coroutines)));
    }

    // Facts of this unit: a user's value for one of them would make the core read or write another unit's files.
    Replace(settings, "source-file", command.sourceFile);
    Replace(settings, "language", UnitLanguage(command) == Language::C ? "C" : "C++");
    Replace(settings, "i-file", files.preprocessedPath);
    Replace(settings, "output-file", files.fragmentPath);
    return settings;
}

void AddIntermodularSettings(SettingsMap& settings, IntermodularAnalysisMode mode, const std::string& mergedFile,
                             const std::string& collectedPath) {
    // A stage is the run's choice: one named in a settings file would have the core read files that nobody makes.
    for (const char* const key : {"intermodular", "intermodular-file", "intermodular-unit-file"}) {
        settings.erase(key);
    }
    switch (mode) {
    case IntermodularAnalysisMode::FirstRun:
        settings.emplace("intermodular", "first-run");
        settings.emplace("intermodular-unit-file", collectedPath);
        break;
    case IntermodularAnalysisMode::Merge:
        settings.emplace("intermodular", "merge-info");
        settings.emplace("intermodular-file", mergedFile);
        break;
    case IntermodularAnalysisMode::SecondRun:
        settings.emplace("intermodular", "second-run");
        settings.emplace("intermodular-file", mergedFile);
        settings.emplace("intermodular-unit-file", collectedPath);
        break;
    case IntermodularAnalysisMode::None:
        break;
    }
}

} // namespace Orvanta
