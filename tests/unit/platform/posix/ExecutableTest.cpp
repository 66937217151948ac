#include "platform/Executable.h"

#include "platform/Paths.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

TEST(FoundExecutable, IsTheFirstRegularFileThatMayBeStarted) {
    const TestFolder folder;
    folder.MakeFolder("folders/cc");
    folder.Write("texts/cc", "");
    for (const char* const name : {"first/cc", "second/cc", "second/c++"}) {
        fs::permissions(folder.Write(name, ""), fs::perms::owner_all);
    }
    const std::string path = folder / "none" + ":" + (folder / "folders") + ":" + (folder / "texts") + ":" +
                             (folder / "first") + ":" + (folder / "second");
    EXPECT_EQ(FindExecutableIn("cc", path), folder / "first/cc");
    EXPECT_EQ(FindExecutableIn("c++", path), folder / "second/c++");
    EXPECT_EQ(FindExecutableIn("gcc", path), "");
    EXPECT_EQ(FindExecutableIn("", path), "");
    EXPECT_EQ(FindExecutableIn("cc", ""), "");
    EXPECT_EQ(FindExecutableIn("cc", (folder / "none") + ":"), "");
}

TEST(FoundExecutable, InAnEmptyOrRelativeFolderIsOneOfTheCurrentDirectory) {
    const TestFolder folder;
    fs::permissions(folder.Write("bin/cc", ""), fs::perms::owner_all);
    const fs::path before = fs::current_path();
    fs::current_path(folder / "bin");
    const std::string empty = FindExecutableIn("cc", "/nowhere::/usr");
    fs::current_path(folder.Path());
    const std::string relative = FindExecutableIn("cc", "bin");
    fs::current_path(before);
    EXPECT_EQ(empty, folder / "bin/cc");
    EXPECT_EQ(relative, folder / "bin/cc");
}

TEST(ProgramDirectoryOf, ThisTestHoldsThisTest) {
    EXPECT_TRUE(fs::exists(JoinPath(ProgramDirectory(), "platform_tests")));
}

} // namespace
} // namespace Orvanta
