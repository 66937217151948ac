#include "history/UnitHistory.h"

#include "HistoryBuild.h"
#include "platform/Exceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <thread>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

using ReadResult = UnitHistory::ReadResult;

const Names Both = {"a.c", "b.c"};
const Names None;

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
    const Names reported = {"sub/../common.h", "", "with \"quote\"", build.folder / "x.h", "sub/../common.h"};
    history->Watch(0).Keep(reported);
    history->Save();
    std::string whole = build.folder / "x.h";
    for (std::size_t at = 0; (at = whole.find('\\', at)) != std::string::npos; at += 2) {
        whole.insert(at, 1, '\\');
    }
    EXPECT_EQ(
        build.folder.Read(".Orvanta/depend_info.json"),
        "[\n{\"arguments\":[\"gcc\",\"a.c\"],\"dependencies\":[\"sub/../common.h\",\"\",\"with \\\"quote\\\"\",\"" +
            whole + "\",\"sub/../common.h\"],\"id\":\"a.c\"}\n]\n");
}

enum class Change { Write, WriteKeepingTime, Remove, MakeFolder };

/// A change of a file.
struct ChangeCase {
    Change change;
    const char* file;
    const char* text;
    Names unchanged;
};

const ChangeCase ChangeCases[] = {
    {Change::Write,            "own.h",                     "other",   {"a.c"}},
    {Change::Write,            "own.h",                     "OWN",     {"a.c"}},
    {Change::WriteKeepingTime, "own.h",                     "OWN",     {"a.c"}},
    {Change::Write,            "shared.h",                  "another", None   },
    {Change::Write,            "shared.h",                  "shared",  Both   },
    {Change::Write,            "a.c",                       "int a;",  {"b.c"}},
    {Change::Write,            "none.h",                    "none",    Both   },
    {Change::Remove,           "own.h",                     "",        {"a.c"}},
    {Change::Remove,           "a.c",                       "",        {"b.c"}},
    {Change::MakeFolder,       "own.h",                     "",        {"a.c"}},
    {Change::Remove,           ".Orvanta/unit_history.bin", "",        None   },
    {Change::Write,            ".Orvanta/unit_history.bin", "other",   None   },
    {Change::Remove,           ".Orvanta/findings-1",       "",        None   },
    {Change::Write,            ".Orvanta/findings-1",       "cut",     None   },
};

void Make(const ChangeCase& row, const HistoryBuild& build) {
    const fs::path path = NativePath(build.folder / row.file);
    const fs::file_time_type time = fs::exists(path) ? fs::last_write_time(path) : fs::file_time_type();
    fs::remove_all(path);
    if (row.change == Change::MakeFolder) {
        fs::create_directory(path);
    } else if (row.change != Change::Remove) {
        build.folder.Write(row.file, row.text);
    }
    if (row.change == Change::WriteKeepingTime) {
        fs::last_write_time(path, time);
    }
}

TEST(UnitHistory, SeesWhichUnitsAChangeTouches) {
    for (const ChangeCase& row : ChangeCases) {
        const HistoryBuild build(Both);
        Make(row, build);
        for (const char* const round : {"read", "read again after a save"}) {
            const auto history = build.Read();
            EXPECT_EQ(build.Unchanged(*history), row.unchanged) << row.file << ", \"" << row.text << "\", " << round;
            history->Save();
        }
    }
}

TEST(UnitHistory, FollowsTheUnitsOfTheBuild) {
    HistoryBuild build(Both);
    std::swap(build.commands[0], build.commands[1]);
    build.AddUnit("c.c");
    EXPECT_EQ(build.Unchanged(*build.Read()), (Names{"b.c", "a.c"}));
    build.commands.erase(build.commands.begin() + 1);
    build.Read()->Save();
    EXPECT_EQ(build.folder.Read(".Orvanta/depend_info.json").find("a.c"), std::string::npos);
    const auto history = build.Read();
    EXPECT_EQ(build.Unchanged(*history), Names{"b.c"});
    EXPECT_EQ(history->KeptFindings(0), "found in b.c\n");
    build.inputs = "other settings";
    EXPECT_EQ(build.Unchanged(*build.Read()), None);
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

TEST(UnitHistory, TakesNoFileForSeenThatWasMadeAfterTheUnitBegan) {
    HistoryBuild build;
    build.AddUnit("a.c");
    for (const bool isUnchanged : {false, true}) {
        const auto history = build.Make();
        static_cast<void>(history->Read());
        UnitWatch seen = history->Watch(0);
        if (!isUnchanged) {
            build.folder.Write("shared.h", "made during the run");
        }
        seen.Keep(build.DependenciesOf(0), "");
        history->Save();
        EXPECT_EQ(build.Read()->IsUnchanged(0), isUnchanged);
    }
}

TEST(UnitHistory, DoubtsWhatWasChangedAndChangedBackDuringTheRun) {
    const HistoryBuild build(Both);
    const std::string path = build.folder.Write("own.h", "other");
    fs::last_write_time(NativePath(path), fs::file_time_type::clock::now() - std::chrono::hours(1));
    const auto history = build.Read();
    UnitWatch seen = history->Watch(1);
    build.folder.Write("own.h", "what the unit sees");
    seen.Keep(build.DependenciesOf(1), "of what it saw");
    build.folder.Write("own.h", "other");
    history->Save();
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"a.c"});
}

TEST(UnitHistory, KeepsFindingsWhenAListingTellsNothingNew) {
    const HistoryBuild build(Both);
    build.folder.Write("own.h", "other");
    const auto history = build.Read();
    for (const std::size_t unit : {0U, 1U}) {
        history->Watch(unit).Keep(build.DependenciesOf(unit));
    }
    history->Save();
    const auto next = build.Read();
    EXPECT_EQ(build.Unchanged(*next), Names{"a.c"});
    EXPECT_TRUE(next->KnowsDependencies(1));
    EXPECT_EQ(next->KeptFindings(0), "found in a.c\n");
    EXPECT_EQ(next->KeptFindings(1), "");
}

TEST(UnitHistory, ForgetsAResultButNotTheList) {
    const HistoryBuild build(Both);
    const auto history = build.Read();
    static_cast<void>(history->Watch(1)); // and nothing is kept
    history->Save();
    const auto next = build.Read();
    EXPECT_EQ(build.Unchanged(*next), Names{"a.c"});
    EXPECT_TRUE(next->KnowsDependencies(1));
    EXPECT_EQ(next->KeptFindings(1), "");
}

TEST(UnitHistory, KeepsAUnitLeftOutUntilItsInputsChange) {
    HistoryBuild build(Both);
    const std::string info = build.folder.Read(".Orvanta/depend_info.json");
    build.AddUnit("c.c");
    const auto history = build.Read();
    history->RecordLeftOut(1);
    history->RecordLeftOut(2);
    history->Save();
    EXPECT_EQ(build.folder.Read(".Orvanta/depend_info.json"), info);

    build.folder.Write("c.c", "a change that matters to no rule");
    const auto next = build.Read();
    EXPECT_EQ(build.Unchanged(*next), (Names{"a.c", "b.c", "c.c"}));
    EXPECT_TRUE(next->IsLeftOut(1));
    EXPECT_TRUE(next->IsLeftOut(2));
    EXPECT_EQ(next->KeptFindings(1), "");

    build.inputs = "other rules";
    EXPECT_FALSE(build.Read()->IsLeftOut(2));
}

TEST(UnitHistory, FindsTheUnitsThatAreMadeOfFiles) {
    HistoryBuild build(Both);
    build.AddUnit("c.c");
    const auto history = build.Read();
    history->Watch(2).Keep(Names{"sub/../relative.h"});
    const Names paths = {build.folder / "own.h", build.folder / "none.h", build.folder / "relative.h",
                         build.folder / "own.h"};
    std::vector<bool> found;
    EXPECT_EQ(history->UnitsMadeOf(paths, found), (std::vector<bool>{false, true, true}));
    EXPECT_EQ(found, (std::vector<bool>{true, false, true, true}));
}

// What other hands write into `depend_info.json`. "@" stands for the folder.
constexpr const char* OtherForm = R"([ {"more": {"a": [1, {}]}, "id": "b.c", "dependencies": ["@/own.h", "@/shared.h"],
                                        "arguments": ["gcc", "b.c"]},
                                       {"dependencies": ["@/shared.h"], "arguments": ["gcc", "a.c"], "id": "a.c"} ])";
constexpr const char* NoId = R"([{"dependencies": ["@/own.h"], "arguments": ["gcc", "b.c"], "id": null}])";
constexpr const char* NewFile = R"([{"dependencies": ["@/new.h", "@/own.h"], "arguments": [], "id": "b.c"}])";
constexpr const char* OtherUnit = R"([{"dependencies": ["@/own.h"], "arguments": ["gcc", "b.c"], "id": "d.c"}])";

struct InfoCase {
    const char* text;
    Names unchanged;
    Names madeOfOwn;
};

const InfoCase InfoCases[] = {
    {OtherForm, Both,    {"b.c"}},
    {NoId,      {"b.c"}, {"b.c"}},
    {NewFile,   None,    {"b.c"}},
    {OtherUnit, None,    None   },
    {"[]",      None,    None   },
};

void WriteInfo(const HistoryBuild& build, std::string text) {
    // "@/" is the folder with a separator of the system, as a text of JSON.
    std::string folder = build.folder / "@";
    folder.pop_back();
    for (std::size_t at = 0; (at = folder.find('\\', at)) != std::string::npos; at += 2) {
        folder.insert(at, 1, '\\');
    }
    for (std::size_t at = 0; (at = text.find("@/", at)) != std::string::npos;) {
        text.replace(at, 2, folder);
    }
    build.folder.Write(".Orvanta/depend_info.json", text);
}

TEST(UnitHistory, TakesTheListsAsTheyStandInTheFile) {
    for (const InfoCase& row : InfoCases) {
        const HistoryBuild build(Both);
        WriteInfo(build, row.text);
        for (const char* const round : {"read", "read again after a save"}) {
            const auto history = build.Read();
            EXPECT_EQ(build.Unchanged(*history), row.unchanged) << row.text << ", " << round;
            std::vector<bool> found;
            const std::vector<bool> isMadeOf = history->UnitsMadeOf(Names{build.folder / "own.h"}, found);
            Names madeOf;
            for (std::size_t unit = 0; unit < Both.size(); ++unit) {
                madeOf.insert(madeOf.end(), isMadeOf[unit] ? 1 : 0, Both[unit]);
            }
            EXPECT_EQ(madeOf, row.madeOfOwn) << row.text << ", " << round;
            history->Save();
        }
    }
}

struct FaultCase {
    const char* text;
    const char* fault;
};

const FaultCase FaultCases[] = {
    {R"([{"arguments": ["gcc", "b.c"]}])",            "field dependencies is not found"                 },
    {R"([{"dependencies": []}])",                     "field arguments is not found"                    },
    {R"([{"arguments": [], "dependencies": "a.h"}])", "field dependencies is no array"                  },
    {R"([{"arguments": [1], "dependencies": []}])",   "field arguments holds something other than texts"},
    {R"([{"id": 1}])",                                "field id is no text"                             },
    {"{}",                                            "an array of entries is expected"                 },
    {"[[]]",                                          "an entry is no object"                           },
};

TEST(UnitHistory, SaysWhatIsWrongWithTheFileAndKnowsNothing) {
    const HistoryBuild build(Both);
    for (const FaultCase& row : FaultCases) {
        const std::string path = build.folder.Write(".Orvanta/depend_info.json", row.text);
        const auto history = build.Read(ReadResult::Unreadable);
        EXPECT_EQ(history->Fault(), path + ": " + row.fault) << row.text;
        EXPECT_EQ(build.Unchanged(*history), None) << row.text;
        EXPECT_EQ(history->KeptFindings(1), "") << row.text;
    }
}

TEST(UnitHistory, TellsWhereTextIsNoJson) {
    const HistoryBuild build(Both);
    build.folder.Write(".Orvanta/depend_info.json", "[{]");
    const auto history = build.Make();
    EXPECT_EQ(history->Read(), ReadResult::Unreadable);
    EXPECT_NE(history->Fault().find("line 1, column 3"), std::string::npos) << history->Fault();
    EXPECT_TRUE(build.Unchanged(*history).empty());
}

/// The files of a history as they stood at one moment.
using Kept = std::map<std::string, std::string>;

Kept KeptNow(const HistoryBuild& build) {
    Kept kept;
    for (const std::string& name : build.KeptFiles()) {
        kept[name] = build.folder.Read(".Orvanta/" + name);
    }
    return kept;
}

TEST(UnitHistory, IsOfUseWheneverTheRunIsKilled) {
    const HistoryBuild build(Both);
    const Kept before = KeptNow(build);
    build.folder.Write("shared.h", "other");
    build.folder.Write("own.h", "another");
    build.folder.Write("new.h", "new");
    const Names dependencies[] = {
        {build.folder / "shared.h"},
        { build.folder / "shared.h",   build.folder / "own.h"}
    };
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
    halfSaved["unit_history.bin"] = saved.at("unit_history.bin");
    Kept halfSavedWithoutProgress = after;
    halfSavedWithoutProgress["unit_history.bin"] = before.at("unit_history.bin");
    EXPECT_NE(before.at("depend_info.json"), after.at("depend_info.json"));

    struct Moment {
        const char* name;
        const Kept& kept;
        Names unchanged;
    };

    const Moment moments[] = {
        {"nothing is saved",                             begun,                    {}     },
        {"the progress is saved",                        saved,                    {"a.c"}},
        {"something is recorded after that",             recorded,                 {"a.c"}},
        {"one of two files is replaced",                 halfSaved,                {"a.c"}},
        {"one of two files is replaced, the first time", halfSavedWithoutProgress, {}     },
        {"all is saved",                                 after,                    Both   },
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
    }
}

TEST(UnitHistory, RemovesWhatOnlyKilledRunsNeeded) {
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

TEST(UnitHistory, ForgetsTheRoomThatOldFindingsTook) {
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

TEST(UnitHistory, NamesTheFileOfDamagedFindings) {
    const HistoryBuild build(Both);
    build.folder.Write(".Orvanta/findings-1", std::string(build.folder.Read(".Orvanta/findings-1").size(), 'x'));
    const auto history = build.Read();
    try {
        static_cast<void>(history->KeptFindings(0));
        FAIL() << "it is not noticed";
    } catch (const ZelmException& fault) {
        EXPECT_EQ(fault.what(), build.folder / ".Orvanta/findings-1" +
                                    ": the findings kept here are damaged; remove this file to have them found anew");
    }
}

TEST(UnitHistory, TakesRecordsOfManyThreads) {
    constexpr std::size_t Units = 40;
    HistoryBuild build;
    for (std::size_t unit = 0; unit < Units; ++unit) {
        build.AddUnit("unit" + std::to_string(unit) + ".c");
    }
    for (int run = 0; run < 2; ++run) {
        const auto history = build.Make();
        static_cast<void>(history->Read());
        std::atomic<std::size_t> next{0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (std::size_t unit = next++; unit < Units; unit = next++) {
                    build.Run(*history, unit, build.FindingsIn(unit));
                    EXPECT_EQ(history->KeptFindings(unit), build.FindingsIn(unit));
                    if (unit % 8 == 0) {
                        history->SaveProgress();
                    }
                }
            });
        }
        std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
        history->Save();
    }
    const auto history = build.Read();
    EXPECT_EQ(build.Unchanged(*history).size(), Units);
    for (std::size_t unit = 0; unit < Units; ++unit) {
        EXPECT_EQ(history->KeptFindings(unit), build.FindingsIn(unit));
    }
}

} // namespace
} // namespace Orvanta
