#include "platform/Files.h"
#include "platform/LockFile.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Orvanta {
namespace {

namespace fs = std::filesystem;

constexpr uid_t Nobody = 65534;

/// While it lives, this process has no more rights than an ordinary user. Where it never has more, nothing changes.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (::geteuid() == 0 && (::setegid(Nobody) != 0 || ::seteuid(Nobody) != 0)) {
            ADD_FAILURE() << "the test can't change its user";
        }
    }

    ~OrdinaryUser() {
        if (::getuid() == 0 && (::seteuid(0) != 0 || ::setegid(0) != 0)) {
            std::abort();
        }
    }

    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
};

// Rewrites a file; whether it stayed the file that it was.
bool StaysItself(const std::string& path, const std::string& text) {
    AtomicFile file(path, AtomicFile::Durability::Synced);
    file.Append(text);
    file.Commit();
    return file.IsInPlace();
}

struct stat StatusOf(const std::string& path) {
    struct stat status {};

    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

std::ptrdiff_t EntriesOf(const std::string& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

TEST(AtomicFileOnPosix, KeepsOwnerGroupAndPermissions) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only the superuser gives files away";
    }
    const TestFolder folder;
    const std::string path = folder.Write("file", "an old text that is longer");
    ASSERT_EQ(::chown(path.c_str(), Nobody, Nobody), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    EXPECT_FALSE(StaysItself(path, "new"));
    CopyContents(path, folder / "copy");
    for (const std::string& each : {path, folder / "copy"}) {
        EXPECT_EQ(StatusOf(each).st_uid, Nobody);
        EXPECT_EQ(StatusOf(each).st_gid, Nobody);
        EXPECT_EQ(StatusOf(each).st_mode & 07777U, 0640U);
    }
    // Who may write, and not give away, writes into the file that is there.
    fs::permissions(folder.Path(), fs::perms::all);
    const std::string roots = folder.Write("roots", "an old text that is longer");
    fs::permissions(roots, fs::perms::all);
    {
        const OrdinaryUser user;
        EXPECT_TRUE(StaysItself(roots, "new"));
    }
    EXPECT_EQ(StatusOf(roots).st_uid, 0U);
    EXPECT_EQ(folder.Read("roots"), "new");
    EXPECT_EQ(EntriesOf(folder.Path()), 3) << "nothing is left beside them";
}

TEST(AtomicFileOnPosix, WritesIntoAFileInAFolderThatMayNotBeWrittenTo) {
    const TestFolder folder;
    const std::string path = folder.Write("closed/file", "an old text that is longer");
    fs::permissions(path, fs::perms::all);
    fs::permissions(folder.Path(), fs::perms::all);
    fs::permissions(folder / "closed", fs::perms(0555));
    {
        const OrdinaryUser user;
        {
            AtomicFile file(path);
            file.Append("given up");
        }
        EXPECT_EQ(folder.Read("closed/file"), "an old text that is longer");
        EXPECT_TRUE(StaysItself(path, "new"));
        EXPECT_THROW(AtomicFile(folder / "closed/other"), std::exception);
    }
    fs::permissions(folder / "closed", fs::perms::all);
    EXPECT_EQ(folder.Read("closed/file"), "new");
}

TEST(AtomicFileOnPosix, WritesToAllNamesOfAFileAndBehindALinkThatLeadsToNothing) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "an old text that is longer");
    fs::create_hard_link(path, folder / "other");
    EXPECT_TRUE(StaysItself(path, "new"));
    EXPECT_EQ(folder.Read("other"), "new");
    EXPECT_EQ(IdentityOf(path), IdentityOf(folder / "other"));
    EXPECT_EQ(IdentityOf(path)->names, 2U);

    fs::create_symlink("later", folder / "link");
    EXPECT_FALSE(StaysItself(folder / "link", "first"));
    EXPECT_FALSE(StaysItself(folder / "link", "second"));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Read("later"), "second");
}

TEST(AtomicFileOnPosix, GoesOnWhereAnOpenFileStands) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "");
    const int open = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(open, 0);
    ASSERT_EQ(::write(open, "before ", 7), 7);
    const std::string name = "/dev/fd/" + std::to_string(open);
    EXPECT_TRUE(IsOwnOpenFile(name));
    AtomicFile file(name);
    file.Append("atomic ");
    file.Commit();
    OutputFile stream(name, OutputFile::Mode::Replace);
    EXPECT_FALSE(stream.IsRegularFile());
    stream.Append("stream ");
    ASSERT_EQ(::write(open, "behind", 6), 6);
    ::close(open);
    EXPECT_EQ(folder.Read("file"), "before atomic stream behind");
    EXPECT_FALSE(IsOwnOpenFile(name));
}

// From now on, this process lives on a file system without locks.
void RefuseLocks() {
    std::array<sock_filter, 4> program = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_flock, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOLCK),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        std::_Exit(2);
    }
}

TEST(AtomicFileOnPosix, WorksWithoutLocksAndLeavesNothing) {
    const TestFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        RefuseLocks();
        const StopFlag stop;
        LockFile lock;
        const bool isTold =
            lock.Take(LockPlaceOf(folder / "file"), std::chrono::milliseconds(0), stop) == LockFile::State::Unsupported;
        const bool isReplaced = !StaysItself(folder / "file", "first") && !StaysItself(folder / "file", "second");
        std::_Exit(isTold && isReplaced ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.Read("file"), "second");
    EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

} // namespace
} // namespace Orvanta
