#include "history/UnitHistory.h"

#include "HistoryBuild.h"
#include "history/FileVersions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

using ReadResult = UnitHistory::ReadResult;

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
    {Change::Write, "own.h", "other", {"a.c"}},
    {Change::Write, "own.h", "OWN", {"a.c"}},
    {Change::WriteKeepingTime, "own.h", "OWN", {"a.c"}},
    {Change::Write, "shared.h", "another", None},
    {Change::Write, "shared.h", "shared", Both},
    {Change::Write, "a.c", "int a;", {"b.c"}},
    {Change::Write, "none.h", "none", Both},
    {Change::Write, "core", "new", None},
    {Change::Remove, "own.h", "", {"a.c"}},
    {Change::Remove, "a.c", "", {"b.c"}},
    {Change::MakeFolder, "own.h", "", {"a.c"}},
    {Change::Remove, ".Orvanta/unit_history.bin", "", None},
    {Change::Write, ".Orvanta/unit_history.bin", "other", None},
    {Change::Remove, ".Orvanta/findings-1", "", None},
    {Change::Write, ".Orvanta/findings-1", "cut", None},
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
    build.inputs = "other settings";
    EXPECT_EQ(build.Unchanged(*build.Read()), None);
}

// A run of a part of the build, or of another build in the same folder.
TEST(UnitHistory, KeepsWhatIsKnownOfOtherUnitsUntilTheirSourceIsGone) {
    HistoryBuild build(Both);
    const CompileCommand a = build.commands[0];
    build.commands.erase(build.commands.begin());
    build.AddUnit("c.c");
    for (const bool isJsonRead : {false, true}) {
        auto history = build.Read();
        EXPECT_EQ(build.Unchanged(*history), (isJsonRead ? Names{"b.c", "c.c"} : Names{"b.c"}));
        build.Run(*history, 1, "found in c.c\n");
        history->Save();
        build.RunAll();
        EXPECT_NE(build.folder.Read(".Orvanta/depend_info.json").find("\"id\":\"a.c\""), std::string::npos);
        std::swap(build.commands[0], build.commands.emplace_back(a));
        history = build.Read();
        EXPECT_EQ(build.Unchanged(*history).size(), 3U);
        EXPECT_EQ(history->KeptFindings(0), "found in a.c\n");
        std::swap(build.commands[0], build.commands.back());
        build.commands.pop_back();
        build.folder.Write(".Orvanta/depend_info.json", build.folder.Read(".Orvanta/depend_info.json") + "\n");
    }
    fs::remove(NativePath(build.folder / "a.c"));
    build.Read()->Save();
    EXPECT_EQ(build.folder.Read(".Orvanta/depend_info.json").find("a.c"), std::string::npos);
    EXPECT_EQ(build.Unchanged(*build.Read()), (Names{"b.c", "c.c"}));
}

// Two of one source, as two compilers compile it, whichever of them is in a run.
TEST(UnitHistory, TellsUnitsOfOneSourceApartByTheirArguments) {
    HistoryBuild build(Names{"a.c", "a.c"});
    build.commands[1].arguments = ArgumentList(Names{"clang", "a.c"});
    build.RunAll();
    // Another hand has written the lists: they are told apart there too.
    build.folder.Write(".Orvanta/depend_info.json", build.folder.Read(".Orvanta/depend_info.json") + "\n");
    EXPECT_EQ(build.Unchanged(*build.Read()), (Names{"a.c", "a.c"}));
    for (const std::size_t alone : {1U, 0U}) {
        HistoryBuild* const part = &build;
        const std::vector<CompileCommand> all = std::exchange(part->commands, {build.commands[alone]});
        const auto history = build.Read();
        EXPECT_TRUE(history->IsUnchanged(0));
        build.Run(*history, 0, "found by " + std::to_string(alone));
        history->Save();
        part->commands = all;
    }
    std::swap(build.commands[0], build.commands[1]);
    const auto history = build.Read();
    EXPECT_EQ(build.Unchanged(*history).size(), 2U);
    EXPECT_EQ(history->KeptFindings(0), "found by 1");
    EXPECT_EQ(history->KeptFindings(1), "found by 0");
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

// What the compiler looked for in vain is another matter: see the core in the rows above.
TEST(UnitHistory, DoubtsAFileThatIsListedAndNotThere) {
    const HistoryBuild build(Both);
    for (int run = 0; run < 2; ++run) {
        const auto history = build.Read();
        EXPECT_EQ(build.Unchanged(*history), run == 0 ? Both : Names{"b.c"});
        UnitWatch seen = history->Watch(0);
        const Names dependencies = {build.folder / "shared.h", build.folder / "none.h"};
        EXPECT_TRUE(seen.Covers(dependencies)) << "another run would tell no more";
        seen.Keep(dependencies, "");
        history->Save();
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

// A file that a compiler looked for, which was there for a while and seen to be there.
TEST(UnitHistory, DoubtsTheAbsenceOfWhatWasThereDuringTheRun) {
    const HistoryBuild build(Both);
    const Names lookedFor = {build.folder / "specs"};
    const auto history = build.Read();
    UnitWatch early = history->Watch(0, lookedFor);
    UnitWatch late = history->Watch(1, lookedFor);
    early.Keep(build.DependenciesOf(0), "of a.c");
    build.folder.Write("specs", "");
    history->SaveProgress();
    fs::remove(NativePath(build.folder / "specs"));
    late.Keep(build.DependenciesOf(1), "of b.c");
    history->Save();
    EXPECT_EQ(build.Unchanged(*build.Read()), None);
}

// One with a time to come could be written again and look the same.
TEST(FileVersions, AreNotProvenByAStampThatCouldBeGivenOnceMore) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "text");
    fs::last_write_time(NativePath(path), fs::file_time_type::clock::now() + std::chrono::hours(1));
    FileVersions files(folder.Path());
    const FileNumber file = files.NumberOf(path, "");
    files.LookAt(file);
    const VersionNumber version =
        files.VersionSeenBy(file, std::chrono::steady_clock::now(), FileVersions::WhenAbsent::Doubt);
    EXPECT_EQ(files.HoldToSave().table[version].sight, Sight::Young);
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
    {OtherForm, Both, {"b.c"}}, {NoId, {"b.c"}, {"b.c"}}, {NewFile, None, {"b.c"}},
    {OtherUnit, None, None},    {"[]", None, None},
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

// A person may name what the core can't see.
TEST(UnitHistory, KeepsWhatAPersonHasAddedToAList) {
    HistoryBuild build(Both);
    build.folder.Write("data.txt", "1");
    WriteInfo(build, R"([{"dependencies": ["@/shared.h", "@/data.txt"], "arguments": ["gcc", "a.c"], "id": "a.c"},
                         {"dependencies": ["@/shared.h", "@/own.h"], "arguments": ["gcc", "b.c"], "id": "b.c"}])");
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"b.c"});
    build.RunAll();
    build.RunAll(); // data.txt is known before it
    EXPECT_EQ(build.Unchanged(*build.Read()), Both);
    // The binary file may be lost as well.
    fs::remove(NativePath(build.folder / ".Orvanta/unit_history.bin"));
    build.RunAll();
    build.RunAll();
    build.folder.Write("data.txt", "another");
    EXPECT_EQ(build.Unchanged(*build.Read()), Names{"b.c"});
    build.RunAll();
    EXPECT_NE(build.folder.Read(".Orvanta/depend_info.json").find("data.txt\"],\"id\":\"a.c\""), std::string::npos);
    WriteInfo(build, R"([{"dependencies": ["@/shared.h"], "arguments": ["gcc", "a.c"], "id": "a.c"}])");
    build.RunAll();
    EXPECT_EQ(build.folder.Read(".Orvanta/depend_info.json").find("data.txt"), std::string::npos);
}

TEST(UnitHistory, MakesUnitsOfProgramsWhoeverWritesTheLists) {
    const HistoryBuild build(Both);
    build.folder.Write("core", "a program that no list names");
    build.RunAll();
    build.RunAll();
    build.folder.Write(".Orvanta/depend_info.json", build.folder.Read(".Orvanta/depend_info.json") + "\n");
    build.Read()->Save();
    EXPECT_EQ(build.Unchanged(*build.Read()), Both);
    build.folder.Write("core", "another program");
    EXPECT_EQ(build.Unchanged(*build.Read()), None);
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
    {R"([{"arguments": ["gcc", "b.c"]}])", "field dependencies is not found"},
    {R"([{"dependencies": []}])", "field arguments is not found"},
    {R"([{"arguments": [], "dependencies": "a.h"}])", "field dependencies is no array"},
    {R"([{"arguments": [1], "dependencies": []}])", "field arguments holds something other than texts"},
    {R"([{"id": 1}])", "field id is no text"},
    {"{}", "an array of entries is expected"},
    {"[[]]", "an entry is no object"},
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

TEST(UnitHistory, TakesRecordsOfManyThreads) {
    constexpr std::size_t Units = 40;
    HistoryBuild build(None);
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
