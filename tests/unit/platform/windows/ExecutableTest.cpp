#include "platform/Executable.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvanta {
namespace {

TEST(FoundExecutable, IsTheFirstThatExistsAsGivenOrWithAnExtension) {
    const TestFolder folder;
    folder.MakeFolder("folders/cl");
    folder.Write("first/gcc.exe", "");
    folder.Write("second/gcc", "");
    folder.Write("second/gcc.exe", "");
    folder.Write("second/tool.bat", "");
    const std::string path =
        folder / "none" + ";;" + (folder / "first") + ";" + (folder / "second") + ";" + (folder / "folders");
    EXPECT_EQ(FindExecutableIn("gcc.exe", path), folder / "first\\gcc.exe");
    EXPECT_TRUE(EqualsIgnoringCase(FindExecutableIn("gcc", path), folder / "first\\gcc.exe"));
    EXPECT_EQ(FindExecutableIn("gcc", folder / "second"), folder / "second\\gcc") << "as given comes first";
    EXPECT_TRUE(EqualsIgnoringCase(FindExecutableIn("tool", path), folder / "second\\tool.bat"));
    EXPECT_EQ(FindExecutableIn("cl", path), folder / "folders\\cl") << "a folder counts";
    EXPECT_EQ(FindExecutableIn("clang", path), "");
    EXPECT_EQ(FindExecutableIn("", path), "");
    EXPECT_EQ(FindExecutableIn("gcc", ""), "");
}

TEST(ExecutableFile, IsAFileThatTheSystemWouldStart) {
    const TestFolder folder;
    folder.Write("gcc.exe", "");
    folder.MakeFolder("cl");
    EXPECT_TRUE(IsExecutableFile(folder / "gcc.exe"));
    EXPECT_TRUE(IsExecutableFile(folder / "gcc"));
    EXPECT_FALSE(IsExecutableFile(folder / "cl"));
    EXPECT_FALSE(IsExecutableFile(folder / "none"));
}

TEST(ProgramDirectoryOf, ThisTestHoldsThisTest) {
    EXPECT_TRUE(PathExists(JoinPath(ProgramDirectory(), "platform_tests.exe")));
}

} // namespace
} // namespace Orvanta
