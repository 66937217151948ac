#include "platform/LockFile.h"

#include "support/TestFolder.h"
#include "unit/platform/ChildProgram.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>

namespace Orvanta {
namespace {

using State = LockFile::State;
using std::chrono::milliseconds;

TEST(Lock, IsHeldByOneAtATimeAndItsFileStays) {
    const TestFolder folder;
    LockFile first;
    LockFile second;
    EXPECT_EQ(first.CurrentState(), State::None);
    EXPECT_EQ(first.Take(folder.Path(), "report"), State::Held);
    EXPECT_EQ(second.Take(folder.Path(), "report"), State::HeldByOther);
    EXPECT_EQ(second.Take(folder.Path(), "other"), State::Held);
    EXPECT_EQ(first.Take(folder.Path(), "third"), State::Held) << "a new key gives the old one up";
    EXPECT_EQ(second.Take(folder.Path(), "report"), State::Held);

    LockFile moved = std::move(second);
    EXPECT_EQ(second.CurrentState(), State::None); // NOLINT: what a moved lock says is under test
    EXPECT_EQ(first.Take(folder.Path(), "report"), State::HeldByOther);
    moved = LockFile();
    EXPECT_EQ(first.Take(folder.Path(), "report"), State::Held);
    EXPECT_TRUE(std::filesystem::exists(folder / LockFile::FileName("other")));
}

TEST(Lock, ThatCannotBeMadeIsUnavailable) {
    const TestFolder folder;
    LockFile lock;
    EXPECT_EQ(lock.Take(folder / "none", "key"), State::Unavailable);
    folder.MakeFolder(LockFile::FileName("key"));
    EXPECT_EQ(lock.Take(folder.Path(), "key"), State::Unavailable);
}

TEST(Lock, IsNamedByAHashOfItsKey) {
    EXPECT_EQ(LockFile::FileName(""), ".orvlock-14695981039346656037");
    EXPECT_EQ(LockFile::FileName("a"), ".orvlock-12638187200555641996");
}

TEST(Lock, ThatIsRemovedGoesToTheNextWithoutAFileLeft) {
    const TestFolder folder;
    LockFile first;
    LockFile second;
    EXPECT_EQ(first.Take(folder.Path(), "base"), State::Held);
    EXPECT_EQ(second.Take(folder.Path(), "base"), State::HeldByOther);
    second.ReleaseAndRemove();
    EXPECT_TRUE(std::filesystem::exists(folder / LockFile::FileName("base"))) << "it holds nothing to remove";
    first.ReleaseAndRemove();
    EXPECT_FALSE(std::filesystem::exists(folder / LockFile::FileName("base")));
    EXPECT_EQ(second.Take(folder.Path(), "base"), State::Held);
}

TEST(Lock, OfOneThingIsOneHoweverItsPathIsSpelt) {
    const TestFolder folder;
    const StopFlag stop;
    folder.MakeFolder("d/sub");
    LockFile first;
    LockFile second;
    ASSERT_EQ(first.Take(LockPlaceOf(folder / "d/report"), milliseconds(0), stop), State::Held);
    for (const std::string& spelling : {folder / "d/../d/./report", folder / "d/sub/../report"}) {
        EXPECT_EQ(second.Take(LockPlaceOf(spelling), milliseconds(0), stop), State::HeldByOther) << spelling;
    }
    if (HostPathRules() == PathRules::Windows) {
        EXPECT_EQ(second.Take(LockPlaceOf(folder / "D/Report"), milliseconds(0), stop), State::HeldByOther);
    }
    EXPECT_EQ(second.Take(LockPlaceOf(folder / "d/other"), milliseconds(0), stop), State::Held);
    EXPECT_EQ(second.Take(LockPlaceOf(folder / "none/report"), milliseconds(0), stop), State::Unavailable);
}

TEST(Lock, IsWaitedForUntilItIsFreeOrTheRunIsToStop) {
    const TestFolder folder;
    StopFlag stop;
    constexpr std::chrono::hours Longest{1};
    LockFile first;
    LockFile second;
    ASSERT_EQ(first.Take(LockPlaceOf(folder / "report"), Longest, stop), State::Held);
    std::thread waiter([&] { EXPECT_EQ(second.Take(LockPlaceOf(folder / "report"), Longest, stop), State::Held); });
    first = LockFile();
    waiter.join();
    stop.Set();
    EXPECT_EQ(first.Take(LockPlaceOf(folder / "report"), Longest, stop), State::HeldByOther);
}

TEST(Lock, DiesWithItsHolder) {
    const TestFolder folder;
    ChildProgram holder({"hold-lock", folder.Path(), "key"});
    ASSERT_EQ(holder.FirstLine(), "held");
    LockFile lock;
    EXPECT_EQ(lock.Take(folder.Path(), "key"), State::HeldByOther);
    holder.Kill();
    EXPECT_EQ(lock.Take(folder.Path(), "key"), State::Held);
}

} // namespace
} // namespace Orvanta
