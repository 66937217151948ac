#pragma once

#include "cache/ResultStore.h"
#include "platform/HttpClient.h"

#include <mutex>
#include <string>

namespace Orvanta {

/// Results on a server that takes GET, HEAD and PUT, as build caches and WebDAV do: each at the address and its key. A
/// server that fails is asked no more after the third time, so that a run never waits long for it.
class RemoteStore : public ResultStore {
public:
    /// \throws HttpException when the system's library for it is missing
    RemoteStore(std::string address, const std::string& token);

    [[nodiscard]] std::optional<std::string> Find(const Digest& key) override;
    /// One that fails is counted, and no error.
    void Store(const Digest& key, std::string_view bytes, Existing existing) override;
    [[nodiscard]] std::string Fault() const override;

private:
    static constexpr int MostFailures = 3;

    // Whether the server is still asked.
    [[nodiscard]] bool IsAsked() const;
    void CountFailure(const std::string& reason);
    [[nodiscard]] std::string AddressOf(const Digest& key) const;

    HttpClient client_;
    std::string address_; // without a slash at its end
    mutable std::mutex mutex_;
    int failures_ = 0;   // guarded by mutex_
    std::string reason_; // guarded by mutex_; of the last failure
};

} // namespace Orvanta
