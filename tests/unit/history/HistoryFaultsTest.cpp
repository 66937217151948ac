#include "HistoryBuild.h"
#include "history/UnitHistory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

// What of a history is left after a kill, after damage, and where nothing can be written.

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

using ReadResult = UnitHistory::ReadResult;

/// The files of a history as they stood at one moment.
using Kept = std::map<std::string, std::string>;

Kept KeptNow(const HistoryBuild& build) {
    Kept kept;
    for (const std::string& name : build.KeptFiles()) {
        kept[name] = build.folder.Read(".Orvanta/" + name);
    }
    return kept;
}

TEST(HistoryFaults, IsOfUseWheneverTheRunIsKilled) {
    const HistoryBuild build(Both);
    const Kept before = KeptNow(build);
    build.folder.Write("shared.h", "other");
    build.folder.Write("own.h", "another");
    build.folder.Write("new.h", "new");
    const Names dependencies[] = {{build.folder / "shared.h"}, {build.folder / "shared.h", build.folder / "own.h"}};
    auto history = build.Read();
    history->Watch(0).Keep(dependencies[0], "new in a.c\n");
    const Kept begun = KeptNow(build);
    history->SaveProgress();
    const Kept saved = KeptNow(build);
    UnitWatch seen = history->Watch(1);
    seen.Keep(Names{build.folder / "own.h"}, "new in b.c\n");
    const Kept recorded = KeptNow(build);
    history->Save();
    const Kept after = KeptNow(build);
    history.reset(); // its files can't be removed everywhere while they are open
    Kept halfSaved = after;
    halfSaved["depend_info.json"] = before.at("depend_info.json");
    EXPECT_NE(before.at("depend_info.json"), after.at("depend_info.json"));

    struct Moment {
        const char* name;
        const Kept& kept;
        Names unchanged;
    };

    const Moment moments[] = {
        {"nothing is saved", begun, {}},
        {"the progress is saved", saved, {"a.c"}},
        {"something is recorded after that", recorded, {"a.c"}},
        {"one of two files is replaced", halfSaved, Both},
        {"all is saved", after, Both},
    };
    for (const Moment& row : moments) {
        fs::remove_all(NativePath(build.folder / ".Orvanta"));
        for (const auto& [name, bytes] : row.kept) {
            build.folder.Write(".Orvanta/" + name, bytes);
        }
        const auto next = build.Read();
        EXPECT_EQ(build.Unchanged(*next), row.unchanged) << row.name;
        for (const std::size_t unit : {0U, 1U}) {
            if (next->IsUnchanged(unit)) {
                EXPECT_EQ(next->KeptFindings(unit), unit == 0 ? "new in a.c\n" : "new in b.c\n") << row.name;
            }
        }
        if (row.unchanged == Both) {
            next->Save(); // makes up for a file that was not replaced
            EXPECT_EQ(build.folder.Read(".Orvanta/depend_info.json"), after.at("depend_info.json")) << row.name;
        }
    }
}

TEST(HistoryFaults, RemovesWhatOnlyKilledRunsNeeded) {
    const HistoryBuild build(Both);
    for (const char* const name : {".orvtmp-1-0", "findings-7", "findings-of mine"}) {
        build.folder.Write(std::string(".Orvanta/") + name, "left");
    }
    const auto history = build.Read();
    history->ForgetResult(0);
    history->Save();
    EXPECT_EQ(build.KeptFiles(),
              (std::set<std::string>{"depend_info.json", "findings-1", "findings-of mine", "unit_history.bin"}));
}

TEST(HistoryFaults, ForgetsTheRoomThatOldFindingsTook) {
    const HistoryBuild build(Both);
    const std::string large(600'000, 'x');
    for (const char mark : {'1', '2', '3', '4'}) {
        const auto history = build.Read();
        build.Run(*history, 0, large + mark);
        history->Save();
    }
    std::uintmax_t size = 0;
    for (const std::string& name : build.KeptFiles()) {
        size += name.starts_with("findings-") ? fs::file_size(NativePath(build.folder / ".Orvanta/" + name)) : 0;
    }
    EXPECT_LT(size, 3 * large.size());
    const auto history = build.Read();
    EXPECT_EQ(history->KeptFindings(0), large + '4');
    EXPECT_EQ(history->KeptFindings(1), "found in b.c\n");
}

/// What stands where a file of the history belongs, the units that still count, and of which file it is told.
struct DamageCase {
    const char* file;
    std::optional<std::string> text; // absent: a folder
    Names unchanged;
    const char* reason; // null: the run itself tells it
};

TEST(HistoryFaults, DamageCostsTheUnitsConcernedAndALine) {
    const HistoryBuild build(Both);
    std::string oneDamaged = build.folder.Read(".Orvanta/findings-1");
    oneDamaged.front() ^= 1;
    std::string newer = build.folder.Read(".Orvanta/unit_history.bin");
    newer[8] = '\x7F'; // the version
    std::string flipped = build.folder.Read(".Orvanta/unit_history.bin");
    flipped[flipped.size() / 2] ^= 1;
    const std::string cut = flipped.substr(0, flipped.size() - 1);
    const DamageCase rows[] = {
        {"findings-1", oneDamaged, {"b.c"}, "the findings kept here are damaged"},
        {"findings-1", "found in a.c\n", {"a.c"}, "findings are missing here"},
        {"findings-1", {}, None, "findings are missing here"},
        {"unit_history.bin", newer, None, "another version of this program wrote it"},
        {"unit_history.bin", flipped, None, "it is damaged"},
        {"unit_history.bin", cut, None, "it is damaged"},
        {"unit_history.bin", {}, None, "a folder stands where a file belongs"},
        {"depend_info.json", {}, None, nullptr},
    };
    const Kept whole = KeptNow(build);
    for (const DamageCase& row : rows) {
        const std::string path = build.folder / (std::string(".Orvanta/") + row.file);
        for (const auto& [name, bytes] : whole) {
            fs::remove_all(NativePath(build.folder / (".Orvanta/" + name)));
            build.folder.Write(".Orvanta/" + name, bytes);
        }
        build.told.clear();
        fs::remove(NativePath(path));
        build.folder.Write(std::string(".Orvanta/") + row.file + (row.text ? "" : "/held"), row.text.value_or(""));
        auto history = build.Read(row.reason == nullptr ? ReadResult::Unreadable : ReadResult::Read);
        EXPECT_EQ(build.Unchanged(*history), row.unchanged) << path;
        for (const std::size_t unit : {0U, 1U}) {
            build.Run(*history, unit, build.FindingsIn(unit));
            EXPECT_EQ(history->KeptFindings(unit), build.FindingsIn(unit)) << path;
        }
        const bool isHealed = row.text || std::string_view(row.file).starts_with("findings");
        EXPECT_EQ(history->Save(), isHealed) << path;
        ASSERT_EQ(build.told.size(), 1U) << path;
        EXPECT_TRUE(build.told.front().starts_with("Warning: " + path + ": ")) << build.told.front();
        EXPECT_NE(build.told.front().find(row.reason == nullptr ? "a folder" : row.reason), std::string::npos)
            << build.told.front();
        history.reset();
        if (isHealed) {
            build.told.clear();
            EXPECT_EQ(build.Unchanged(*build.Read()), Both) << path;
            EXPECT_EQ(build.told, None);
        }
    }
}

// The unit has run and found something else: what it had found before is no result any more.
TEST(HistoryFaults, KeepsNoOldFindingsWhereNewOnesCanNotBeWritten) {
    const HistoryBuild build(Both);
    const fs::path findings = NativePath(build.folder / ".Orvanta/findings-1");
    {
        const auto history = build.Read();
        fs::rename(findings, NativePath(build.folder / "kept"));
        fs::create_directory(findings);
        build.Run(*history, 0, "something else\n");
        history->Save();
    }
    fs::remove(findings);
    fs::rename(NativePath(build.folder / "kept"), findings);
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"b.c"});
}

// A full disk, a missing right, or something else in the place of the folder.
TEST(HistoryFaults, GoesOnWhereNothingCanBeKept) {
    HistoryBuild build;
    build.AddUnit("a.c");
    build.folder.Write(".Orvanta", "a file");
    const auto history = build.Read(ReadResult::Missing);
    build.Run(*history, 0, "found\n");
    EXPECT_FALSE(history->Save());
    ASSERT_EQ(build.told.size(), 1U);
    EXPECT_TRUE(build.told.front().starts_with("Warning: " + (build.folder / ".Orvanta") + ": "));
    EXPECT_EQ(build.folder.Read(".Orvanta"), "a file");
}

} // namespace
} // namespace Orvanta
