#pragma once

#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace Orvanta {

/// Answers that are found once for each key. Any thread may ask; those that want the same answer wait for it.
///
/// A failure to find one is no answer: only the thread whose `find` threw gets the exception, and the others ask for
/// themselves. So what one asker brings along (its folder, its environment) is never held against the next.
template <typename Value>
class OnceMap {
public:
    /// The answer for `key`. The first to ask calls `find()`, without a lock.
    template <typename Find>
    Value Get(const std::string& key, const Find& find) {
        while (true) {
            // Made anew for each try: a promise can be kept only once.
            std::promise<std::optional<Value>> promise;
            std::shared_future<std::optional<Value>> answer;
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
            // Outside of the lock: finding an answer may take long, and may ask this map for another key.
            if (isOurs) {
                Answer(key, promise, find);
            }
            // Nothing: the one who was to find it has failed, and the entry is gone. Try as the next.
            if (const std::optional<Value>& found = answer.get()) {
                return *found;
            }
        }
    }

private:
    /// Keeps the promise, with nothing when `find` throws, and hands that exception on.
    template <typename Find>
    void Answer(const std::string& key, std::promise<std::optional<Value>>& promise, const Find& find) {
        try {
            promise.set_value(find());
        } catch (...) {
            {
                const std::lock_guard lock(mutex_);
                // Before the promise is kept, so that those who wake up don't find the entry of the failure again.
                answers_.erase(key);
            }
            promise.set_value(std::nullopt); // those who wait ask anew
            throw;
        }
    }

    std::mutex mutex_;
    std::unordered_map<std::string, std::shared_future<std::optional<Value>>> answers_; // guarded by mutex_
};

} // namespace Orvanta
