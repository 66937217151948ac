#include "settings/SettingsFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "support/ErrorOf.h"
#include "support/HostPath.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Orvanta {
namespace {

std::string Joined(const SettingsMap& settings) {
    std::string text;
    for (const auto& [key, value] : settings) {
        text.append("[").append(key).append("=").append(value).append("]");
    }
    return text;
}

struct ReadCase {
    std::string_view text;
    std::string_view settings;
};

TEST(SettingsFile, ReadsKeysAndValues) {
    const ReadCase cases[] = {
        {"", ""},
        {"a=1\nb=2", "[a=1][b=2]"},
        {" \ta \v= 1 2\f\r\n", "[a=1 2]"},
        {"\xEF\xBB\xBFx=1\r\nb=2\r\n", "[b=2][x=1]"},
        {"  # a=1\n#b=2\nc=#3 # no comment", "[c=#3 # no comment]"},
        {"no equals sign\n\n   \na=b=c==", "[a=b=c==]"},
        {"a=\n=1", "[=1][a=]"},
        {"b=2\na=z\nb=1\na=y", "[a=z][a=y][b=2][b=1]"},
        {"analysis-mode = GA;OP;64", "[analysis-mode=13]"},
    };
    for (const ReadCase& row : cases) {
        EXPECT_EQ(Joined(ParseSettings(row.text, "/base")), row.settings) << row.text;
    }
}

struct PathCase {
    std::string_view line;
    std::string_view value;
};

TEST(SettingsFile, TakesRelativePathsFromItsFolder) {
    const std::string base = HostPath("/base");
    const PathCase cases[] = {
        {"exclude-path=lib", "lib"},
        {"rules-config=x/rules.json", "x/rules.json"},
        {"intermodular-file=a b.dfo", "a b.dfo"},
        {"vcprojectdir=.", "."},
        {"exclude-path=/lib", "/lib"},
        {"exclude-path=c:lib", "c:lib"},
        {"exclude-path=1:/lib", "1:/lib"},
    };
    for (const PathCase& row : cases) {
        const SettingsMap settings = ParseSettings(row.line, base);
        ASSERT_EQ(settings.size(), 1U) << row.line;
        EXPECT_EQ(settings.begin()->second, JoinPath(base, row.value)) << row.line;
    }
}

TEST(SettingsFile, LeavesOtherValuesAlone) {
    const PathCase cases[] = {
        {"exclude-path=c:/lib", "c:/lib"}, // absolute on the other system, at least
        {R"(exclude-path=Z:\lib)", R"(Z:\lib)"},
        {"exclude-path=*/gen/*", "*/gen/*"},
        {"exclude-path=lib?", "lib?"},
        {"exclude-path=", ""},
        {"output-file=report.json", "report.json"}, // no path key
    };
    for (const PathCase& row : cases) {
        const SettingsMap settings = ParseSettings(row.line, HostPath("/base"));
        ASSERT_EQ(settings.size(), 1U) << row.line;
        EXPECT_EQ(settings.begin()->second, row.value) << row.line;
    }
}

TEST(SettingsFile, FaultsOfReadingNameTheFileOrTheValue) {
    const TestFolder folder;
    const std::string missing = folder / "missing.cfg";
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(ReadSettingsFile(missing)); }), "Can't open config file " + missing);
    const std::string bad = folder.Write("bad.cfg", "analysis-mode=GA # general\n");
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(ReadSettingsFile(bad)); }),
              "Wrong diagnostic group name: 'GA # general'");
}

TEST(SettingsFile, IsReadBackAsWritten) {
    const TestFolder folder;
    const SettingsMap settings = {
        {"source-file", "/p q/\"a\"=#\xC3\xA9.c"},
        {"exclude-path", "*/b/*"},
        {"exclude-path", HostPath("/a")},
        {"analysis-mode", "4"},
        {"std", ""},
    };
    const SettingsFile file(settings, folder / "a.c", SettingsFile::Lifetime::Keep);
    EXPECT_EQ(file.Path(), folder / "a.c.cfg");
    EXPECT_EQ(folder.Read("a.c.cfg"), "analysis-mode=4\nexclude-path=*/b/*\nexclude-path=" + HostPath("/a") +
                                          "\nsource-file=/p q/\"a\"=#\xC3\xA9.c\nstd=\n");
    EXPECT_EQ(ReadSettingsFile(file.Path()), settings);
}

struct UnwritableCase {
    std::string_view key;
    std::string_view value;
    std::string_view error; // behind "The settings format can't hold the "
};

TEST(SettingsFile, RefusesWhatTheFormatCannotHold) {
    const UnwritableCase cases[] = {
        {"i-file", "/a\nb\r", R"(value of "i-file": it has a line break: "/a\nb\r")"},
        {"i-file", "/a.i ", R"(value of "i-file": it has white space at an end: "/a.i ")"},
        {"i-file", "\v/a.i", "value of \"i-file\": it has white space at an end: \"\v/a.i\""},
        {"a\nb", "1", R"(key of the value "1": it has a line break: "a\nb")"},
        {"a=b", "1", R"(key of the value "1": it has an equals sign: "a=b")"},
        {"#a", "1", R"(key of the value "1": it has a comment sign at its start: "#a")"},
    };
    const TestFolder folder;
    folder.Write("unit.cfg", "earlier");
    for (const UnwritableCase& row : cases) {
        const SettingsMap settings = {{std::string(row.key), std::string(row.value)}};
        EXPECT_EQ(ErrorOf([&] { SettingsFile(settings, folder / "unit", SettingsFile::Lifetime::Remove); }),
                  "The settings format can't hold the " + std::string(row.error));
    }
    EXPECT_EQ(folder.Read("unit.cfg"), "earlier");
    const std::string base = folder / "missing/unit";
    EXPECT_EQ(ErrorOf([&] { SettingsFile({}, base, SettingsFile::Lifetime::Keep); }),
              "Can't create config file " + base + ".cfg");
}

TEST(SettingsFile, IsRemovedOnceByItsLastOwner) {
    const TestFolder folder;
    const auto make = [&](const char* name, SettingsFile::Lifetime lifetime) {
        return SettingsFile({}, folder / name, lifetime);
    };
    {
        const SettingsFile kept = make("kept", SettingsFile::Lifetime::Keep);
        SettingsFile first = make("first", SettingsFile::Lifetime::Remove);
        SettingsFile second = make("second", SettingsFile::Lifetime::Remove);
        first = std::move(second);
        EXPECT_FALSE(PathExists(folder / "first.cfg"));
        EXPECT_TRUE(PathExists(folder / "second.cfg"));
        const SettingsFile third(std::move(first));
        EXPECT_TRUE(PathExists(third.Path()));
    }
    EXPECT_FALSE(PathExists(folder / "second.cfg"));
    EXPECT_TRUE(PathExists(folder / "kept.cfg"));
}

} // namespace
} // namespace Orvanta
