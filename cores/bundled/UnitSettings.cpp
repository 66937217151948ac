#include "bundled/UnitSettings.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"
#include "platform/Table.h"
#include "platform/Text.h"
#include "settings/AnalysisMode.h"

namespace Orvanta {

namespace {

[[noreturn]] void Fail(const std::string& settingsPath, const std::string& what) {
    throw ZelmException(settingsPath + ": " + what);
}

std::string RequiredValue(const SettingsMap& settings, const std::string& settingsPath, std::string_view key) {
    // Of a key that stands twice the last one counts, as in all settings files.
    std::string value = LastValue(settings, key).value_or("");
    if (value.empty()) {
        Fail(settingsPath, "the key \"" + std::string(key) + "\" is missing or empty");
    }
    return value;
}

// Required: a guess would read a whole unit by the wrong rules.
UnitLanguage ReadLanguage(const SettingsMap& settings, const std::string& settingsPath) {
    const std::string word = RequiredValue(settings, settingsPath, "language");
    if (word == "C") {
        return UnitLanguage::C;
    }
    if (word != "C++") {
        Fail(settingsPath, R"("language" is ")" + word + R"(", but "C" or "C++" is expected)");
    }
    return UnitLanguage::Cpp;
}

// A word that is neither is an error: to take it for one of the two would be a guess.
bool ReadSwitch(const SettingsMap& settings, const std::string& settingsPath, std::string_view key,
                std::string_view defaultWord) {
    const std::string word = LastValue(settings, key).value_or(std::string(defaultWord));
    if (word != "yes" && word != "no") {
        Fail(settingsPath, '"' + std::string(key) + R"(" is ")" + word + R"(", but "yes" or "no" is expected)");
    }
    return word == "yes";
}

// The driver writes a number; who writes settings by hand may use names.
CheckChoice ReadChoice(const SettingsMap& settings, const std::string& settingsPath,
                       std::string_view currentDirectory) {
    CheckChoice choice;
    try {
        choice.groups = ParseAnalysisMode(LastValue(settings, "analysis-mode").value_or(DefaultAnalysisMode));
    } catch (const ZelmException& error) {
        Fail(settingsPath, error.what());
    }
    choice.all = ReadSwitch(settings, settingsPath, "engines-all", "no");
    const auto [first, last] = settings.equal_range("rules-config");
    for (auto entry = first; entry != last; ++entry) {
        if (!entry->second.empty()) {
            ReadRules(JoinPath(currentDirectory, entry->second), choice.rules);
        }
    }
    return choice;
}

std::vector<EngineKind> ReadEngines(const SettingsMap& settings, const std::string& settingsPath) {
    try {
        return ParseEngineList(LastValue(settings, "engines").value_or(""));
    } catch (const ZelmException& error) {
        Fail(settingsPath, std::string("\"engines\" holds ") + error.what());
    }
}

bool ReadDepth(const SettingsMap& settings, const std::string& settingsPath) {
    const std::string word = LastValue(settings, "engines-depth").value_or("bounded");
    if (word != "bounded" && word != "deep") {
        Fail(settingsPath, R"("engines-depth" is ")" + word + R"(", but "bounded" or "deep" is expected)");
    }
    return word == "deep";
}

struct StageWord {
    std::string_view word;
    IntermodularStage stage;
};

constexpr StageWord StageWords[] = {
    {"first-run", IntermodularStage::Collecting},
    {"merge-info", IntermodularStage::Linking},
    {"second-run", IntermodularStage::Performing},
};

std::string RequiredPath(const SettingsMap& settings, const std::string& settingsPath, std::string_view key,
                         std::string_view currentDirectory) {
    return NormalizePath(JoinPath(currentDirectory, RequiredValue(settings, settingsPath, key)));
}

} // namespace

IntermodularStage ReadIntermodularStage(const SettingsMap& settings, const std::string& settingsPath) {
    const auto word = LastValue(settings, "intermodular");
    if (!word) {
        return IntermodularStage::None;
    }
    if (const StageWord* const row = FindRow(StageWords, &StageWord::word, *word)) {
        return row->stage;
    }
    Fail(settingsPath,
         R"("intermodular" is ")" + *word + R"(", but "first-run", "merge-info" or "second-run" is )" + "expected");
}

UnitSettings ReadUnitSettings(const SettingsMap& settings, const std::string& settingsPath,
                              std::string_view currentDirectory) {
    const auto requiredPath = [&](std::string_view key) {
        return RequiredPath(settings, settingsPath, key, currentDirectory);
    };
    // Empty stays empty: joined with the directory, it would name that.
    const auto optionalPath = [&](std::string_view key) {
        const std::string path = LastValue(settings, key).value_or("");
        return path.empty() ? path : NormalizePath(JoinPath(currentDirectory, path));
    };

    UnitSettings unit;
    unit.preprocessedPath = requiredPath("i-file");
    unit.sourcePath = requiredPath("source-file");
    unit.outputPath = optionalPath("output-file");
    unit.language = ReadLanguage(settings, settingsPath);
    unit.standard = LastValue(settings, "std").value_or("");
    unit.platform = LastValue(settings, "platform").value_or("");
    unit.preprocessor = LastValue(settings, "preprocessor").value_or("");
    unit.isPlainCharUnsigned = ReadSwitch(settings, settingsPath, "funsigned-char", "no");
    unit.choice = ReadChoice(settings, settingsPath, currentDirectory);
    unit.engines = ReadEngines(settings, settingsPath);
    unit.isDeep = ReadDepth(settings, settingsPath);
    unit.outputFormat = ReadSwitch(settings, settingsPath, "new-output-format", "yes")
                            ? OrvlogConverter::LineFormat::Json
                            : OrvlogConverter::LineFormat::Raw;
    unit.stage = ReadIntermodularStage(settings, settingsPath);
    if (unit.stage == IntermodularStage::Collecting) {
        unit.informationPath = requiredPath("intermodular-unit-file");
    } else if (unit.stage == IntermodularStage::Performing) {
        unit.mergedPath = requiredPath("intermodular-file");
        unit.informationPath = optionalPath("intermodular-unit-file");
    }
    return unit;
}

LinkSettings ReadLinkSettings(const SettingsMap& settings, const std::string& settingsPath,
                              std::string_view currentDirectory) {
    LinkSettings link;
    link.listPath = RequiredPath(settings, settingsPath, "intermodular-unit-list", currentDirectory);
    link.mergedPath = RequiredPath(settings, settingsPath, "intermodular-file", currentDirectory);
    // Beside the settings, which are this run's own, so no other run can have the same.
    link.workFolder = NormalizePath(JoinPath(currentDirectory, settingsPath)) + ".link";
    return link;
}

} // namespace Orvanta
