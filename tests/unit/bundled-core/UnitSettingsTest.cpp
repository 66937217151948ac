#include "bundled/UnitSettings.h"

#include "platform/Exceptions.h"
#include "support/HostPath.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

SettingsMap CompleteSettings() {
    return {
        {"i-file", "t/u.i"}, {"source-file", "../src/u.c"},
        {"language", "C"},   {"output-file", HostPath("/t/u.findings")},
        {"std", ""},         {"platform", "linux64"},
    };
}

TEST(UnitSettings, PathsAreTakenFromTheCurrentDirectory) {
    const UnitSettings unit = ReadUnitSettings(CompleteSettings(), "u.cfg", HostPath("/p/build"));
    EXPECT_EQ(unit.preprocessedPath, HostPath("/p/build/t/u.i"));
    EXPECT_EQ(unit.sourcePath, HostPath("/p/src/u.c"));
    EXPECT_EQ(unit.outputPath, HostPath("/t/u.findings"));
    EXPECT_EQ(unit.outputFormat, OrvlogConverter::LineFormat::Json);
}

TEST(UnitSettings, FaultsNameTheFileAndTheKey) {
    struct {
        const char* key;
        const char* value; // null: the key is left out
        const char* message;
    } const cases[] = {
        {"i-file", nullptr, "u.cfg: the key \"i-file\" is missing or empty"},
        {"source-file", "", "u.cfg: the key \"source-file\" is missing or empty"},
        {"language", "c", R"(u.cfg: "language" is "c", but "C" or "C++" is expected)"},
        {"new-output-format", "on", R"(u.cfg: "new-output-format" is "on", but "yes" or "no" is expected)"},
        {"engines", "cppcheck,gcc",
         R"(u.cfg: "engines" holds "gcc", expected "cppcheck", "clang" or both, joined by ',')"},
        {"engines-depth", "low", R"(u.cfg: "engines-depth" is "low", but "bounded" or "deep" is expected)"},
        {"engines-all", "1", R"(u.cfg: "engines-all" is "1", but "yes" or "no" is expected)"},
        {"intermodular", "third-run",
         R"(u.cfg: "intermodular" is "third-run", but "first-run", "merge-info" or "second-run" is expected)"},
        {"intermodular", "first-run", "u.cfg: the key \"intermodular-unit-file\" is missing or empty"},
        {"intermodular", "second-run", "u.cfg: the key \"intermodular-file\" is missing or empty"},
    };

    for (const auto& row : cases) {
        SettingsMap settings = CompleteSettings();
        settings.erase(row.key);
        if (row.value != nullptr) {
            settings.emplace(row.key, row.value);
        }
        try {
            static_cast<void>(ReadUnitSettings(settings, "u.cfg", "/p"));
            ADD_FAILURE() << row.key << " was accepted";
        } catch (const ZelmException& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
    }
}

TEST(UnitSettings, LinkingNeedsNoUnit) {
    SettingsMap settings = {
        {"intermodular", "merge-info"},
        {"intermodular-file", "m.dfo"},
        {"intermodular-unit-list", "t/list"},
    };
    EXPECT_EQ(ReadIntermodularStage(settings, "t/m.cfg"), IntermodularStage::Linking);
    const LinkSettings link = ReadLinkSettings(settings, "t/m.cfg", HostPath("/p"));
    EXPECT_EQ(link.mergedPath, HostPath("/p/m.dfo"));
    EXPECT_EQ(link.listPath, HostPath("/p/t/list"));
    EXPECT_EQ(link.workFolder, HostPath("/p/t/m.cfg.link"));
    settings.erase("intermodular-unit-list");
    EXPECT_THROW(static_cast<void>(ReadLinkSettings(settings, "t/m.cfg", HostPath("/p"))), ZelmException);
}

} // namespace
} // namespace Orvanta
