#include "analysis/UnitSettings.h"

#include "compilers/Cl.h"
#include "compilers/Gcc.h"

#include <gtest/gtest.h>

#include <optional>

namespace Orvanta {
namespace {

const UnitFiles Files = {"/tmp/1_a.c", "/tmp/1_a.c.Orvanta.i", "/tmp/1_a.c.Orvanta.findings", {}, {}};

ParsedCommand CommandFor(const char* compiler, const char* source) {
    ParsedCommand command;
    command.compilerType = CompilerType::Gcc;
    command.compilerPath = compiler;
    command.sourceFile = source;
    return command;
}

struct LanguageCase {
    const char* compiler;
    const char* source;
    std::optional<Language> stated;
    Language expected;
};

const LanguageCase LanguageCases[] = {
    {"/usr/bin/gcc", "a.c", std::nullopt, Language::C},
    {"/usr/bin/gcc", "a.C", std::nullopt, Language::Cpp},
    {"/usr/bin/gcc", "a.cc", std::nullopt, Language::Cpp},
    {"/usr/bin/g++", "a.c", std::nullopt, Language::Cpp},
    {"/usr/bin/x-clang++-14", "a.c", std::nullopt, Language::Cpp},
    {"/opt/g++/bin/gcc", "a.c", std::nullopt, Language::C},
    {"/usr/bin/g++", "a.cpp", Language::C, Language::C},
    {"/usr/bin/gcc", "a.c", Language::Cpp, Language::Cpp},
};

TEST(UnitLanguage, IsStatedElseFollowsCompilerThenExtension) {
    for (const LanguageCase& row : LanguageCases) {
        ParsedCommand command = CommandFor(row.compiler, row.source);
        command.language = row.stated;
        EXPECT_EQ(UnitLanguage(command), row.expected) << row.compiler << " " << row.source;
    }
}

TEST(BuildUnitSettings, FillsInTheDefaultsInKeyOrder) {
    const Gcc model;
    const SettingsMap expected = {
        {"analysis-mode", "4"},
        {"fshort-double", "no"},
        {"fshort-float", "no"},
        {"funsigned-char", "no"},
        {"i-file", Files.preprocessedPath},
        {"language", "C"},
        {"new-output-format", "yes"},
        {"output-file", Files.fragmentPath},
        {"platform", "x64"},
        {"preprocessor", "gcc"},
        {"source-file", "src/a.c"},
        {"std", ""},
    };
    EXPECT_EQ(BuildUnitSettings({}, model, CommandFor("gcc", "src/a.c"), "", Files), expected);
}

TEST(BuildUnitSettings, PutsTheUsersKeysOverTheDefaultsAndTheUnitsFactsOverBoth) {
    const Gcc model;
    ParsedCommand command = CommandFor("gcc", "a.c");
    command.platformWord = "linux32";
    command.unsignedChar = true;
    const SettingsMap user = {
        {"analysis-mode", "36"}, {"exclude-path", "/p/one"}, {"exclude-path", "*/two/*"},  {"output-file", "/p/report"},
        {"platform", "pic8"},    {"source-file", "other.c"}, {"own-key", "kept as it is"},
    };
    const SettingsMap settings = BuildUnitSettings(user, model, command, "c11", Files);
    const std::pair<const char*, const char*> expected[] = {
        {"analysis-mode", "36"}, {"platform", "pic8"},   {"funsigned-char", "yes"},
        {"std", "c11"},          {"source-file", "a.c"}, {"own-key", "kept as it is"},
    };
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(settings.count(key), 1U) << key;
        EXPECT_EQ(LastValue(settings, key), value);
    }
    EXPECT_EQ(LastValue(settings, "output-file"), Files.fragmentPath);
    EXPECT_EQ(settings.count("exclude-path"), 2U);
}

TEST(BuildUnitSettings, TellsOfCoroutinesInTheMsvcFamilyOnly) {
    const Cl model;
    ParsedCommand command = CommandFor("cl", "a.cpp");
    command.compilerType = CompilerType::Cl;
    EXPECT_EQ(LastValue(BuildUnitSettings({}, model, command, "", Files), "msvc-await"), "no");
    command.effects.Add(FlagEffect::Coroutines);
    EXPECT_EQ(LastValue(BuildUnitSettings({}, model, command, "", Files), "msvc-await"), "yes");
    const SettingsMap user = {{"msvc-await", "no"}};
    EXPECT_EQ(LastValue(BuildUnitSettings(user, model, command, "", Files), "msvc-await"), "no");
    EXPECT_FALSE(BuildUnitSettings({}, Gcc(), CommandFor("gcc", "a.c"), "", Files).contains("msvc-await"));
}

} // namespace
} // namespace Orvanta
