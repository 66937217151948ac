#include "cppcheck/UnitSettings.h"

#include "platform/Exceptions.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

[[noreturn]] void Fail(const std::string& settingsPath, const std::string& what) {
    throw ZelmException(settingsPath + ": " + what);
}

std::string RequiredValue(const SettingsMap& settings, const std::string& settingsPath, std::string_view key) {
    std::string value = LastValue(settings, key).value_or("");
    if (value.empty()) {
        Fail(settingsPath, "the key \"" + std::string(key) + "\" is missing or empty");
    }
    return value;
}

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

bool ReadSwitch(const SettingsMap& settings, const std::string& settingsPath, std::string_view key,
                std::string_view defaultWord) {
    const std::string word = LastValue(settings, key).value_or(std::string(defaultWord));
    if (word != "yes" && word != "no") {
        Fail(settingsPath, '"' + std::string(key) + R"(" is ")" + word + R"(", but "yes" or "no" is expected)");
    }
    return word == "yes";
}

} // namespace

UnitSettings ReadUnitSettings(const SettingsMap& settings, const std::string& settingsPath,
                              std::string_view currentDirectory) {
    if (const auto stage = LastValue(settings, "intermodular")) {
        Fail(settingsPath, R"("intermodular" is ")" + *stage + R"(", but this core has no intermodular stages)");
    }
    const auto absolute = [&](const std::string& path) {
        return NormalizePath(JoinPath(currentDirectory, path));
    };

    UnitSettings unit;
    unit.preprocessedPath = absolute(RequiredValue(settings, settingsPath, "i-file"));
    unit.sourcePath = absolute(RequiredValue(settings, settingsPath, "source-file"));
    if (const std::string path = LastValue(settings, "output-file").value_or(""); !path.empty()) {
        unit.outputPath = absolute(path);
    }
    unit.language = ReadLanguage(settings, settingsPath);
    unit.standard = LastValue(settings, "std").value_or("");
    unit.platform = LastValue(settings, "platform").value_or("");
    unit.preprocessor = LastValue(settings, "preprocessor").value_or("");
    unit.isPlainCharUnsigned = ReadSwitch(settings, settingsPath, "funsigned-char", "no");
    unit.outputFormat = ReadSwitch(settings, settingsPath, "new-output-format", "yes")
                            ? OrvlogConverter::LineFormat::Json
                            : OrvlogConverter::LineFormat::Raw;
    return unit;
}

} // namespace Orvanta
