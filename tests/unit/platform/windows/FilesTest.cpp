#include "platform/Files.h"

#include "platform/Exceptions.h"
#include "platform/LockFile.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

std::ptrdiff_t EntriesOf(const std::string& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

TEST(ExchangedFiles, HaveSwappedTheirContentsAndNothingStaysBeside) {
    const TestFolder folder;
    const std::string first = folder.Write("first", "1");
    const std::string second = folder.Write("second", "2");
    ExchangeFiles(first, second);
    EXPECT_EQ(folder.Read("first") + folder.Read("second"), "21");
    EXPECT_EQ(EntriesOf(folder.Path()), 2);

    EXPECT_THROW(ExchangeFiles(first, folder / "none"), ZelmException);
    EXPECT_EQ(folder.Read("first"), "2");
    EXPECT_EQ(EntriesOf(folder.Path()), 2);
}

TEST(AtomicFileOnWindows, TakesAwayWhatAKilledWriterLeft) {
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

TEST(OutputFileOnWindows, CanAppendToWhatHasNoPlaces) {
    OutputFile device("NUL", OutputFile::Mode::Replace);
    EXPECT_FALSE(device.IsRegularFile());
    device.Append("gone");
}

// A folder whose path alone is longer than what the system's plain functions take.
class LongPath {
public:
    explicit LongPath(const TestFolder& folder) : root_(folder.Path()), path_(folder.Path()) {
        while (path_.size() < 300) {
            path_ = JoinPath(path_, std::string(40, 'n'));
            static_cast<void>(MakePrivateFolder(path_));
        }
    }

    ~LongPath() { RemoveTree(root_); }

    LongPath(const LongPath&) = delete;
    LongPath& operator=(const LongPath&) = delete;

    [[nodiscard]] std::string operator/(std::string_view name) const { return JoinPath(path_, name); }

private:
    std::string root_;
    std::string path_;
};

TEST(PathBeyondTheOldLimit, WorksForFilesOfEveryKind) {
    const TestFolder folder;
    const LongPath deep(folder);
    const std::string path = deep / "file";
    OutputFile(path, OutputFile::Mode::Replace).Append("first");
    EXPECT_EQ(ReadWholeFile(path), "first");
    AtomicFile atomic(path);
    atomic.Append("second");
    atomic.Commit();
    std::string streamed;
    std::ifstream(NativePath(path)) >> streamed;
    EXPECT_EQ(streamed, "second");

    OutputFile(deep / "other", OutputFile::Mode::Replace).Append("third");
    ExchangeFiles(path, deep / "other");
    EXPECT_EQ(ReadWholeFile(path), "third");
    EXPECT_TRUE(PathExists(path));
    EXPECT_TRUE(IsDirectory(deep / ""));
    RemoveFile(path);
    EXPECT_FALSE(PathExists(path));
}

TEST(FolderTree, GoesWhateverItsDepth) {
    const TestFolder folder;
    const std::string root = folder.MakeFolder("root");
    std::string deep = root;
    for (int level = 0; level < 12; ++level) {
        deep = JoinPath(deep, std::string(40, 'n'));
        ASSERT_TRUE(MakePrivateFolder(deep));
        OutputFile(JoinPath(deep, "file"), OutputFile::Mode::Replace).Append("x");
    }
    RemoveTree(root);
    EXPECT_FALSE(PathExists(root));
}

} // namespace
} // namespace Orvanta
