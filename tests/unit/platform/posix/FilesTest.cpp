#include "platform/Files.h"

#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/LockFile.h"
#include "platform/posix/FileSwap.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

TEST(AtomicFileOnPosix, KeepsTheLinkAndThePermissions) {
    const TestFolder folder;
    const fs::path target = folder.Write("real/file", "old");
    constexpr fs::perms OddPermissions = fs::perms::owner_all | fs::perms::group_exec;
    fs::permissions(target, OddPermissions);
    fs::create_symlink("real/file", folder / "inner");
    fs::create_symlink("inner", folder / "outer");
    AtomicFile file(folder / "outer");
    file.Append("new");
    file.Commit();
    EXPECT_EQ(folder.Read("real/file"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "outer"));
    EXPECT_EQ(fs::status(target).permissions(), OddPermissions);

    fs::create_symlink("real/fresh", folder / "dangling");
    AtomicFile fresh(folder / "dangling");
    fresh.Append("made");
    fresh.Commit();
    EXPECT_EQ(folder.Read("real/fresh"), "made");
}

TEST(AtomicFileOnPosix, TakesAwayWhatAKilledWriterLeft) {
    const TestFolder folder;
    std::string leftover;
    {
        const AtomicFile file(folder / "file");
        leftover = fs::directory_iterator(folder.Path())->path().filename().string();
    }
    folder.Write(leftover, "half a rep");
    AtomicFile file(folder / "file");
    file.Append("whole");
    file.Commit();
    EXPECT_EQ(folder.Read("file"), "whole");
    EXPECT_FALSE(fs::exists(folder / leftover));
}

TEST(AtomicFileOnPosix, WritesToADeviceInsteadOfReplacingIt) {
    const TestFolder folder;
    fs::create_symlink("/dev/null", folder / "null");
    AtomicFile file(folder / "null");
    file.Append("gone");
    file.Commit();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    fs::create_symlink("/dev/full", folder / "full");
    AtomicFile full(folder / "full");
    EXPECT_EQ(ErrorOf<ZelmException>([&] { full.Append("no room"); }), (folder / "full") + ": No space left on device");
}

TEST(OutputFileOnPosix, CanAppendToWhatHasNoPlaces) {
    OutputFile device("/dev/null", OutputFile::Mode::Replace);
    EXPECT_FALSE(device.IsRegularFile());
    device.Append("gone");
    EXPECT_THROW(OutputFile("/dev/full", OutputFile::Mode::Replace).Append("x"), ZelmException);
}

using Swap = void (*)(const std::string&, const std::string&);

TEST(PathOnPosix, ThatCannotBeToldIsNotTakenForNothing) {
    const TestFolder folder;
    const std::string circle = folder / "circle";
    std::filesystem::create_symlink("circle", circle);
    const PathAnswer answer = LookAt(circle);
    EXPECT_FALSE(answer.kind.has_value());
    EXPECT_FALSE(answer.IsThere());
    EXPECT_FALSE(AskForStamp(circle).isTold);
    const std::string reason = "Too many levels of symbolic links";
    EXPECT_EQ(answer.reason, reason);
    const std::function<void()> questions[] = {
        [&] { static_cast<void>(PathExists(circle)); },
        [&] { static_cast<void>(IsDirectory(circle)); },
        [&] { static_cast<void>(IsRegularFile(circle)); },
        [&] { static_cast<void>(FileSize(circle)); },
    };
    for (const auto& ask : questions) {
        try {
            ask();
            ADD_FAILURE() << "an answer";
        } catch (const FileException& error) {
            EXPECT_EQ(error.Path(), circle);
            EXPECT_EQ(error.Reason(), reason);
        }
    }
}

TEST(PathOnPosix, LeadsToItsTargetWhetherThatIsThereOrNot) {
    const TestFolder folder;
    folder.MakeFolder("real/sub");
    fs::create_directory_symlink(folder / "real/sub", folder / "way");
    fs::create_symlink("../real/./later", folder / "way/inner"); // from the folder in which the link is
    fs::create_symlink("way/inner", folder / "outer");
    const std::string target = folder / "real/real/later";
    EXPECT_EQ(TargetOf(folder / "way/../file"), folder / "real/file");
    folder.MakeFolder("real/real");
    EXPECT_EQ(TargetOf(folder / "outer"), target);
    folder.Write("real/real/later", "");
    EXPECT_EQ(TargetOf(folder / "outer"), target);
    fs::create_symlink("circle", folder / "circle");
    EXPECT_THROW(static_cast<void>(TargetOf(folder / "circle")), FileException);
    const StopFlag stop;
    LockFile first;
    LockFile second;
    EXPECT_EQ(first.Take(LockPlaceOf(folder / "outer"), std::chrono::milliseconds(0), stop), LockFile::State::Held);
    EXPECT_EQ(second.Take(LockPlaceOf(target), std::chrono::milliseconds(0), stop), LockFile::State::HeldByOther);
    EXPECT_EQ(second.Take(LockPlaceOf(folder / "circle"), std::chrono::milliseconds(0), stop), LockFile::State::Held);
}

class FileSwap : public testing::TestWithParam<Swap> {};

TEST_P(FileSwap, ExchangesTwoNamesAndLeavesNothingBeside) {
    const TestFolder folder;
    const std::string first = folder.Write("first", "1");
    const std::string second = folder.Write("second", "2");
    GetParam()(first, second);
    EXPECT_EQ(folder.Read("first") + folder.Read("second"), "21");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 2);

    EXPECT_THROW(GetParam()(first, folder / "none"), ZelmException);
    EXPECT_EQ(folder.Read("first"), "2");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 2);
}

INSTANTIATE_TEST_SUITE_P(BothWays, FileSwap, testing::Values(&ExchangeFiles, &SwapByRenaming));

} // namespace
} // namespace Orvanta
