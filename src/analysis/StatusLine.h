#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Orvanta {

/// The line below all messages that says where the run stands, while the object lives. A thread of its own writes it
/// when something has happened, at most ten times a second, and each second so that its times go on; nothing is written
/// when the line is as it was. The terminal is asked for its width each time.
class StatusLine {
public:
    /// Gives the line, of at most so many columns. Called by the line's thread.
    using MakeText = std::function<std::string(std::size_t columns)>;

    /// Where no thread can be started there is no line.
    explicit StatusLine(MakeText makeText);
    /// Takes the line away.
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Something has happened. Any thread may call it; waits for no terminal.
    void Update();

private:
    void Work();
    void Draw();

    MakeText makeText_;
    std::string shown_; // of the thread
    std::mutex mutex_;
    std::condition_variable changed_;
    std::condition_variable ended_;
    bool hasChanged_ = false; // guarded by mutex_; since the line was written
    bool isEnding_ = false;   // guarded by mutex_
    std::thread thread_;      // the last: it uses the others
};

} // namespace Orvanta
