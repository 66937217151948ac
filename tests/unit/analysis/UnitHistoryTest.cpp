#include "analysis/UnitHistory.h"

#include "HistoryBuild.h"
#include "platform/Exceptions.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

using ReadResult = UnitHistory::ReadResult;

const Names Both = {"a.c", "b.c"};

TEST(UnitHistory, KnowsWhatTheLastRunSawAndFound) {
    const HistoryBuild build(Both);
    const auto history = build.Read();
    EXPECT_EQ(build.Unchanged(*history), Both);
    EXPECT_TRUE(history->KnowsDependencies(1));
    EXPECT_EQ(history->KeptFindings(0), "found in a.c\n");
    EXPECT_EQ(history->KeptFindings(1), "found in b.c\n");
    EXPECT_EQ(build.KeptFiles(), (std::set<std::string>{"depend_info.json", "findings-1", "unit_history.bin"}));
}

TEST(UnitHistory, WritesTheListsAsTheCoreReportedThem) {
    HistoryBuild build;
    build.AddUnit("a.c");
    const auto history = build.Make();
    const Names reported = {"sub/../shared.h", "", "with \"quote\"", build.folder / "x.h", "sub/../shared.h"};
    history->Record(0, history->Begin(0), reported, std::nullopt);
    history->Save();
    std::string whole = build.folder / "x.h";
    for (std::size_t at = 0; (at = whole.find('\\', at)) != std::string::npos; at += 2) {
        whole.insert(at, 1, '\\');
    }
    EXPECT_EQ(
        build.folder.Read(".Orvanta/depend_info.json"),
        "[\n{\"arguments\":[\"gcc\",\"a.c\"],\"dependencies\":[\"sub/../shared.h\",\"\",\"with \\\"quote\\\"\",\"" +
            whole + "\",\"sub/../shared.h\"],\"id\":\"a.c\"}\n]\n");
}

struct ChangeCase {
    const char* name;
    std::function<void(HistoryBuild&)> change;
    Names unchanged;
};

void Write(const HistoryBuild& build, const char* name, const char* text) {
    build.folder.Write(name, text);
}

void Remove(const HistoryBuild& build, const char* name) {
    fs::remove_all(NativePath(build.folder / name));
}

const ChangeCase ChangeCases[] = {
    {"nothing",                      [](HistoryBuild&) {},                                                      Both   },
    {"a header of one",              [](HistoryBuild& build) { Write(build, "own.h", "other"); },               {"a.c"}},
    {"a header of both",             [](HistoryBuild& build) { Write(build, "shared.h", "another"); },          {}     },
    {"as many bytes",                [](HistoryBuild& build) { Write(build, "own.h", "OWN"); },                 {"a.c"}},
    {"a source",                     [](HistoryBuild& build) { Write(build, "a.c", "int a;"); },                {"b.c"}},
    {"the time alone",               [](HistoryBuild& build) { Write(build, "shared.h", "shared"); },           Both   },
    {"the content but not the time",
     [](HistoryBuild& build) {
         const auto time = fs::last_write_time(NativePath(build.folder / "own.h"));
         Write(build, "own.h", "OWN");
         fs::last_write_time(NativePath(build.folder / "own.h"), time);
     },                                                                                                         {"a.c"}},
    {"a header gone",                [](HistoryBuild& build) { Remove(build, "own.h"); },                       {"a.c"}},
    {"a source gone",                [](HistoryBuild& build) { Remove(build, "a.c"); },                         {"b.c"}},
    {"a folder for a header",
     [](HistoryBuild& build) {
         Remove(build, "own.h");
         build.folder.MakeFolder("own.h");
     },                                                                                                         {"a.c"}},
    {"the inputs",                   [](HistoryBuild& build) { build.inputs = "other core"; },                  {}     },
    {"the order of the units",
     [](HistoryBuild& build) { std::swap(build.commands[0], build.commands[1]); },
     {"b.c", "a.c"}                                                                                                    },
    {"one unit more",                [](HistoryBuild& build) { build.AddUnit("c.c"); },                         Both   },
    {"one unit fewer",               [](HistoryBuild& build) { build.commands.erase(build.commands.begin()); }, {"b.c"}},
    {"the binary file gone",         [](HistoryBuild& build) { Remove(build, ".Orvanta/unit_history.bin"); },   {}     },
    {"the binary file damaged",
     [](HistoryBuild& build) {
         std::string bytes = build.folder.Read(".Orvanta/unit_history.bin");
         bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
         build.folder.Write(".Orvanta/unit_history.bin", bytes);
     },                                                                                                         {}     },
    {"the findings cut short",       [](HistoryBuild& build) { Write(build, ".Orvanta/findings-1", "foun"); },  {}     },
};

TEST(UnitHistory, SeesWhichUnitsAChangeTouches) {
    for (const ChangeCase& row : ChangeCases) {
        HistoryBuild build(Both);
        row.change(build);
        for (const char* const round : {"read", "read again after a save"}) {
            const auto history = build.Read();
            EXPECT_EQ(build.Unchanged(*history), row.unchanged) << row.name << ", " << round;
            history->Save();
        }
    }
}

TEST(UnitHistory, RunsAgainOnlyUntilTheNextSuccess) {
    const HistoryBuild build(Both);
    build.folder.Write("own.h", "other");
    const auto history = build.Read();
    EXPECT_EQ(build.Unchanged(*history), Names{"a.c"});
    build.Run(*history, 1, "found in the other\n");
    history->Save();
    const auto next = build.Read();
    EXPECT_EQ(build.Unchanged(*next), Both);
    EXPECT_EQ(next->KeptFindings(0), "found in a.c\n");
    EXPECT_EQ(next->KeptFindings(1), "found in the other\n");
}

} // namespace
} // namespace Orvanta
