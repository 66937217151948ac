#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Orvanta {

/// A fixed number of threads that run tasks in the order in which they were pushed. The destructor runs what is still
/// queued and joins the threads. One thread pushes and waits.
class WorkerPool {
public:
    /// Starts as many of the threads as the system grants.
    /// \throws ZelmException "Can't start a thread: " and the reason when it grants none
    explicit WorkerPool(std::size_t threads);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// How many threads there are.
    [[nodiscard]] std::size_t Size() const noexcept { return threads_.size(); }

    /// Why there are fewer than were asked for; empty when there are not.
    [[nodiscard]] const std::string& Fault() const noexcept { return fault_; }

    /// Queues a task; never waits. Nobody takes it when there are no threads.
    void push_task(std::function<void()> task);

    /// Waits until fewer tasks are queued than there are threads and `more`, or `longest` has passed: whether there is
    /// room.
    [[nodiscard]] bool WaitForRoom(std::chrono::milliseconds longest, std::size_t more = 0);

    /// Waits until every task has ended. Rethrows the first exception that left a task since the last call.
    void WaitForTasks();

private:
    // Starts threads until there are so many; false, with `fault_` set, when the system grants fewer.
    bool StartThreads(std::size_t threads);
    // Lets the threads finish what is queued, and joins them.
    void EndThreads() noexcept;
    // What each thread does until the end: takes a task, runs it, and keeps the first exception.
    void Work();

    std::mutex mutex_;
    std::condition_variable taskAdded_;
    std::condition_variable taskTaken_;
    std::condition_variable allDone_;
    std::deque<std::function<void()>> queue_; // guarded by mutex_
    std::size_t running_ = 0;                 // guarded by mutex_
    std::exception_ptr failure_;              // guarded by mutex_
    bool ending_ = false;                     // guarded by mutex_
    std::string fault_;
    std::vector<std::thread> threads_;
};

} // namespace Orvanta
