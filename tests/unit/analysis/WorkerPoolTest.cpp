#include "analysis/WorkerPool.h"

#include "support/Meeting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace Orvanta {
namespace {

TEST(WorkerPool, RunsEveryTaskOnce) {
    constexpr int Tasks = 1000;
    std::atomic<int> sum = 0;
    WorkerPool pool(4);
    for (int i = 1; i <= Tasks; ++i) {
        pool.push_task([&sum, i] { sum += i; });
    }
    pool.WaitForTasks();
    EXPECT_EQ(sum.load(), Tasks * (Tasks + 1) / 2);
}

TEST(WorkerPool, RunsAsManyTasksAtOnceAsItHasThreads) {
    constexpr unsigned Threads = 3;
    Meeting allRunning(Threads); // ends only when every thread is inside a task
    WorkerPool pool(Threads);
    for (unsigned i = 0; i < Threads; ++i) {
        pool.push_task([&allRunning] { allRunning.Come(); });
    }
    pool.WaitForTasks();
}

TEST(WorkerPool, HasNoRoomWhileItsBacklogIsFull) {
    Meeting start(2);
    Meeting end(2);
    WorkerPool pool(1);
    pool.push_task([&] {
        start.Come();
        end.Come();
    });
    start.Come();
    EXPECT_TRUE(pool.WaitForRoom(std::chrono::milliseconds(0)));
    pool.push_task([] {});
    EXPECT_FALSE(pool.WaitForRoom(std::chrono::milliseconds(0)));
    end.Come();
    pool.WaitForTasks();
    EXPECT_TRUE(pool.WaitForRoom(std::chrono::milliseconds(0)));
}

TEST(WorkerPool, HandsAnExceptionToTheWaiterAndGoesOn) {
    std::atomic<int> done = 0;
    WorkerPool pool(2);
    pool.push_task([] { throw std::runtime_error("broken"); });
    pool.push_task([&done] { ++done; });
    EXPECT_THROW(pool.WaitForTasks(), std::runtime_error);
    pool.push_task([&done] { ++done; });
    pool.WaitForTasks();
    EXPECT_EQ(done.load(), 2);
}

TEST(WorkerPool, RunsWhatIsQueuedBeforeItEnds) {
    std::atomic<int> done = 0;
    {
        WorkerPool pool(1);
        for (int i = 0; i < 50; ++i) {
            pool.push_task([&done] { ++done; });
        }
    }
    EXPECT_EQ(done.load(), 50);
}

} // namespace
} // namespace Orvanta
