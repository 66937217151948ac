#include "cache/RemoteStore.h"

#include <utility>

namespace Orvanta {

namespace {

constexpr int Ok = 200;
constexpr int FirstRedirection = 300;
constexpr int NotFound = 404;
// To send so much takes no longer than to ask whether it is there.
constexpr std::size_t CheapBytes = 4096;

bool IsSuccess(int status) {
    return status >= Ok && status < FirstRedirection;
}

std::string StatusText(int status) {
    return "the server answers with " + std::to_string(status);
}

} // namespace

RemoteStore::RemoteStore(std::string address, const std::string& token) : client_(token), address_(std::move(address)) {
    address_.erase(address_.find_last_not_of('/') + 1);
}

std::optional<std::string> RemoteStore::Find(const Digest& key) {
    if (!IsAsked()) {
        return std::nullopt;
    }
    try {
        HttpAnswer answer = client_.Get(AddressOf(key));
        if (answer.status == Ok) {
            return std::move(answer.body);
        }
        if (answer.status != NotFound) {
            CountFailure(StatusText(answer.status));
        }
    } catch (const HttpException& error) {
        CountFailure(error.what());
    }
    return std::nullopt;
}

void RemoteStore::Store(const Digest& key, std::string_view bytes, Existing existing) {
    if (!IsAsked()) {
        return;
    }
    try {
        // Another run may have put it there since it was missed.
        if (existing == Existing::MayStay && bytes.size() > CheapBytes && client_.Head(AddressOf(key)) == Ok) {
            return;
        }
        const HttpAnswer answer = client_.Put(AddressOf(key), bytes);
        if (!IsSuccess(answer.status)) {
            CountFailure(StatusText(answer.status) + " to what is put there");
        }
    } catch (const HttpException& error) {
        CountFailure(error.what());
    }
}

std::string RemoteStore::Fault() const {
    const std::lock_guard lock(mutex_);
    return failures_ < MostFailures
               ? std::string()
               : address_ + " failed " + std::to_string(MostFailures) + " times and was asked no more: " + reason_;
}

bool RemoteStore::IsAsked() const {
    const std::lock_guard lock(mutex_);
    return failures_ < MostFailures;
}

void RemoteStore::CountFailure(const std::string& reason) {
    const std::lock_guard lock(mutex_);
    // Those that were under way when it was given up say nothing new.
    if (failures_ < MostFailures) {
        ++failures_;
        reason_ = reason;
    }
}

std::string RemoteStore::AddressOf(const Digest& key) const {
    return address_ + "/" + key.Text();
}

} // namespace Orvanta
