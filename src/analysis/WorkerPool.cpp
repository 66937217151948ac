#include "analysis/WorkerPool.h"

#include "platform/CrashHandler.h"
#include "platform/Exceptions.h"

#include <exception>
#include <new>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

void MakeCrashRoom(std::optional<ThreadCrashRoom>& room) noexcept {
    try {
        room.emplace();
    } catch (const std::bad_alloc&) {
        // a crash of this thread leaves no trace; the run goes on
    }
}

} // namespace

WorkerPool::WorkerPool(std::size_t threads) {
    if (StartThreads(threads)) {
        return;
    }
    // A thread alone does nothing: it needs memory, and starts a child. So half of what there was room for is given
    // back.
    const std::size_t half = (threads_.size() + 1) / 2;
    EndThreads();
    // No thread is left that could see it.
    ending_ = false;
    StartThreads(half);
    if (threads_.empty() && threads > 0) {
        // With a single thread the run still comes to its end, so only none at all is an error.
        throw ZelmException("Can't start a thread: " + fault_);
    }
}

WorkerPool::~WorkerPool() {
    EndThreads();
}

// False when there are fewer than that.
bool WorkerPool::StartThreads(std::size_t threads) {
    try {
        while (threads_.size() < threads) {
            threads_.emplace_back([this] { Work(); });
        }
        return true;
    } catch (const std::exception& error) { // no room for a thread, or in the list of them
        fault_ = error.what();
        return false;
    }
}

// Those that run finish what is queued.
void WorkerPool::EndThreads() noexcept {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    // Behind the lock: a thread that is woken finds it free.
    taskAdded_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
    threads_.clear();
}

void WorkerPool::push_task(std::function<void()> task) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(task));
    }
    taskAdded_.notify_one();
}

bool WorkerPool::WaitForRoom(std::chrono::milliseconds longest, std::size_t more) {
    std::unique_lock lock(mutex_);
    // As many queued tasks as threads keep every one of them busy while this thread comes back with the next.
    return taskTaken_.wait_for(lock, longest, [this, more] { return queue_.size() < threads_.size() + more; });
}

void WorkerPool::WaitForTasks() {
    std::unique_lock lock(mutex_);
    // An empty queue is not enough: a task that was taken from it may still run.
    allDone_.wait(lock, [this] { return queue_.empty() && running_ == 0; });
    if (failure_) {
        // Handed on once, so that the next wait does not tell of it again.
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void WorkerPool::Work() {
    std::optional<ThreadCrashRoom> crashRoom;
    // On this thread, and before any task: the room is of the stack that it guards.
    MakeCrashRoom(crashRoom);
    std::unique_lock lock(mutex_);
    while (true) {
        taskAdded_.wait(lock, [this] { return ending_ || !queue_.empty(); });
        // Only at the end: until then the wait goes on.
        if (queue_.empty()) {
            return;
        }
        std::function<void()> task = std::move(queue_.front());
        queue_.pop_front();
        ++running_;
        lock.unlock();
        taskTaken_.notify_one();
        std::exception_ptr failure;
        try {
            task();
        } catch (...) {
            failure = std::current_exception();
        }
        task = nullptr; // what it holds may take locks of its own when it goes
        lock.lock();
        // Later ones mostly follow from the first.
        if (failure && !failure_) {
            failure_ = failure;
        }
        --running_;
        if (queue_.empty() && running_ == 0) {
            allDone_.notify_all();
        }
    }
}

} // namespace Orvanta
