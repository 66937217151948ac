#include "platform/Files.h"

#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace Orvanta {
namespace {

std::ptrdiff_t EntriesOf(const std::string& folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

TEST(WholeFile, IsReadByteForByte) {
    const TestFolder folder;
    for (const std::size_t size : {std::size_t(0), std::size_t(1), std::size_t(4096), std::size_t(1'000'001)}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>(i % 251);
        }
        EXPECT_EQ(ReadWholeFile(folder.Write("file", bytes)), bytes) << size;
    }
}

TEST(WholeFile, ThatCannotBeReadIsNamedWithTheReason) {
    const TestFolder folder;
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(ReadWholeFile(folder / "none")); }),
              (folder / "none") + ": No such file or directory");
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(ReadWholeFile(folder.Path())); }), folder.Path() + ": Is a directory");
}

TEST(PathOf, WhatIsThereIsToldByItsKind) {
    const TestFolder folder;
    folder.Write("file", "12345");
    EXPECT_EQ(KindOf(folder / "file"), PathKind::File);
    EXPECT_EQ(KindOf(folder.Path()), PathKind::Folder);
    EXPECT_EQ(KindOf(HostPathRules() == PathRules::Windows ? "NUL" : "/dev/null"), PathKind::Other);
    EXPECT_EQ(FileSize(folder / "file"), 5U);
    for (const std::string& nothing :
         {folder / "none", folder / "none/file", folder / "file/below", std::string(), folder / std::string(5000, 'x'),
          (folder / "file") + std::string("\0behind", 7)}) {
        EXPECT_EQ(KindOf(nothing), PathKind::Nothing) << nothing;
        EXPECT_FALSE(LookAt(nothing).IsThere()) << nothing;
    }
    EXPECT_EQ(FileSize(folder / "none"), std::nullopt);
}

TEST(OutputFileOf, ARegularFileIsWrittenAtItsPlacesAndItsEnd) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "0123456789");
    {
        OutputFile file(path, OutputFile::Mode::Keep);
        EXPECT_TRUE(file.IsRegularFile());
        file.WriteAt("ab", 2);
        file.Append("XY");
        file.Truncate(11);
        file.WriteAt("end", 13);
        OutputFile moved = std::move(file);
        moved.Append("!");
    }
    EXPECT_EQ(folder.Read("file"), std::string("01ab456789X\0\0end!", 17));
    OutputFile(path, OutputFile::Mode::Replace).Append("new");
    EXPECT_EQ(folder.Read("file"), "new");
    EXPECT_EQ(ErrorOf([&] { OutputFile(folder / "no/file", OutputFile::Mode::Keep); }),
              (folder / "no/file") + ": No such file or directory");
}

TEST(AtomicFileAt, AnExistingFileChangesOnlyInCommit) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "old");
    {
        AtomicFile file(path);
        file.Append("given up");
    }
    EXPECT_EQ(folder.Read("file"), "old");
    AtomicFile file(path);
    file.Append("ne");
    file.Append("w");
    EXPECT_EQ(folder.Read("file"), "old");
    file.Commit();
    EXPECT_EQ(folder.Read("file"), "new");
    EXPECT_EQ(EntriesOf(folder.Path()), 1) << "nothing is left beside it";
}

TEST(AtomicFileAt, TheSameNameServesTwoWritersAtOnce) {
    const TestFolder folder;
    AtomicFile first(folder / "file");
    AtomicFile second(folder / "file");
    first.Append("first");
    second.Append("second");
    first.Commit();
    EXPECT_EQ(folder.Read("file"), "first");
    second.Commit();
    EXPECT_EQ(folder.Read("file"), "second");
    EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

TEST(AtomicFileAt, AFolderOrInAMissingFolderIsAnError) {
    const TestFolder folder;
    EXPECT_EQ(ErrorOf([&] { AtomicFile(folder.Path()); }), folder.Path() + ": Is a directory");
    EXPECT_EQ(ErrorOf([&] { AtomicFile(folder / "no/file"); }), (folder / "no/file") + ": No such file or directory");
}

} // namespace
} // namespace Orvanta
