//// fault
#include <ctime>
int Hour(const std::time_t* now) {
    const std::tm* parts = std::localtime(now); // HERE
    return parts != nullptr ? parts->tm_hour : 0;
}
//// right
#include <ctime>
int Hour(const std::time_t* now) {
    std::tm parts = {};
    return localtime_r(now, &parts) != nullptr ? parts.tm_hour : 0;
}
//// fault
#include <mutex>
int Next(int value) {
    std::mutex guard;
    std::lock_guard<std::mutex> lock(guard); // HERE
    return value + 1;
}
//// right
#include <mutex>
static std::mutex guard;
int Next(int value) {
    std::lock_guard<std::mutex> lock(guard);
    return value + 1;
}
//// fault
#include <condition_variable>
#include <mutex>
void Wait(std::condition_variable& changed, std::mutex& guard, const bool& ready) {
    std::unique_lock<std::mutex> lock(guard);
    if (!ready) {
        changed.wait(lock); // HERE
    }
}
//// right
#include <condition_variable>
#include <mutex>
void Wait(std::condition_variable& changed, std::mutex& guard, const bool& ready) {
    std::unique_lock<std::mutex> lock(guard);
    while (!ready) {
        changed.wait(lock);
    }
}
