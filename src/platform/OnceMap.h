#pragma once

#include <exception>
#include <future>
#include <mutex>
#include <string>
#include <unordered_map>

namespace Orvanta {

/// Answers that are found once for each key. Any thread may ask; those that want the same answer wait for it.
template <typename Value>
class OnceMap {
public:
    /// The answer for `key`. The first to ask calls `find()`, without a lock; what that throws, everybody gets.
    template <typename Find>
    Value Get(const std::string& key, const Find& find) {
        std::promise<Value> promise;
        std::shared_future<Value> answer;
        bool isOurs = false;
        {
            const std::lock_guard lock(mutex_);
            const auto [entry, isNew] = answers_.try_emplace(key);
            if (isNew) {
                entry->second = promise.get_future().share();
            }
            isOurs = isNew;
            answer = entry->second;
        }
        if (isOurs) {
            try {
                promise.set_value(find());
            } catch (...) {
                promise.set_exception(std::current_exception());
            }
        }
        return answer.get();
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::string, std::shared_future<Value>> answers_; // guarded by mutex_
};

} // namespace Orvanta
