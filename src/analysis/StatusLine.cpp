#include "analysis/StatusLine.h"

#include "platform/Console.h"

#include <chrono>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::chrono::milliseconds ShortestPause{100};
constexpr std::chrono::seconds LongestPause{1};

} // namespace

StatusLine::StatusLine(MakeText makeText) : makeText_(std::move(makeText)) {
    try {
        thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        return; // a line that is missing is no reason to end a run
    }
}

StatusLine::~StatusLine() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    ended_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
    ShowStatus({});
}

void StatusLine::Update() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(hasChanged_, true)) {
            return;
        }
    }
    // While the thread pauses nobody waits for this, and it costs nothing.
    changed_.notify_one();
}

void StatusLine::Work() {
    std::unique_lock lock(mutex_);
    while (!isEnding_) {
        changed_.wait_for(lock, LongestPause, [this] { return isEnding_ || hasChanged_; });
        hasChanged_ = false;
        lock.unlock();
        Draw();
        lock.lock();
        ended_.wait_for(lock, ShortestPause, [this] { return isEnding_; });
    }
}

void StatusLine::Draw() {
    try {
        const std::optional<unsigned> columns = MessageColumns();
        // The last column stays free: a terminal may wrap behind it.
        std::string text = columns && *columns > 1 ? makeText_(*columns - 1) : std::string();
        if (text != shown_) {
            ShowStatus(text);
            shown_ = std::move(text);
        }
    } catch (const std::bad_alloc&) {
        return; // the old line stands a while longer
    }
}

} // namespace Orvanta
