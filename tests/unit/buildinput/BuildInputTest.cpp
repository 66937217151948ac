#include "buildinput/BuildInput.h"

#include "Collecting.h"
#include "platform/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvanta {

namespace {

std::string FailureOf(const std::string& path) {
    Collecting collecting;
    try {
        ReadBuildInput(path, collecting.collector);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no failure";
}

TEST(BuildInput, ThatCannotBeOpenedIsNamed) {
    const TestFolder folder;
    const std::string paths[] = {folder / "none.json", folder / "none", folder.MakeFolder("folder.json"),
                                 folder.MakeFolder("folder")};
    for (const std::string& path : paths) {
        EXPECT_EQ(FailureOf(path), "Couldn't open file " + path);
    }
}

TEST(BuildInput, IsADatabaseOnlyWithThatExtension) {
    const TestFolder folder;
    for (const char* name : {"commands.JSON", "commands", "commands.json.txt", ".json"}) {
        const std::string path = folder.Write(name, "[]");
        EXPECT_EQ(FailureOf(path), "Couldn't parse " + path) << name;
    }
    EXPECT_EQ(FailureOf(folder.Write("commands.json", "[]")), "No compiler invocations were detected.");
}

TEST(BuildInput, IsReadFromItsOwnFolderAndTold) {
    const TestFolder folder;
    const std::string clang = MakeProgram(folder, "clang");
    const std::string path = folder.Write("build/compile_commands.json", R"([{"directory": "../sub", "arguments": [")" +
                                                                             clang + R"(", "-c", "a.c"]},
                                              {"directory": ".", "arguments": [")" +
                                                                             clang + R"(", "a.o"]}])");
    Collecting collecting;
    collecting.log.OpenFile(folder / "log.txt");
    ReadBuildInput(path, collecting.collector);
    const CollectedCommands collected = collecting.collector.Take();

    ASSERT_EQ(collected.units.size(), 1U);
    EXPECT_EQ(*collected.units[0].absoluteDirectory, NormalizePath(folder / "sub"));
    EXPECT_EQ(collected.invocations, 2U);
    EXPECT_THAT(folder.Read("log.txt"), testing::HasSubstr("Using tracing file: " + path + "\n"));
}

} // namespace

} // namespace Orvanta
