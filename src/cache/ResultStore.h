#pragma once

#include "cache/Digest.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// A place of packed results, each under the digest of all that it depends on. Any thread may use it.
class ResultStore {
public:
    virtual ~ResultStore() = default;

    /// What is kept under the key; absent when nothing is, or it can't be had. Not checked: the reader does that.
    [[nodiscard]] virtual std::optional<std::string> Find(const Digest& key) = 0;

    /// What becomes of bytes that are there already.
    enum class Existing {
        MayStay, ///< they say the same, and need not be sent again
        Replace,
    };

    /// Keeps the bytes under the key.
    /// \throws ZelmException
    virtual void Store(const Digest& key, std::string_view bytes, Existing existing) = 0;

    /// Makes room beside an entry, where the place is ours to bound.
    virtual void MakeRoom(const Digest& /*key*/, std::uint64_t /*largest*/) {}

    /// Why the place is no longer asked; empty while it is.
    [[nodiscard]] virtual std::string Fault() const { return {}; }
};

/// Whether a place is the address of a server and not a folder.
[[nodiscard]] bool IsServerAddress(std::string_view place) noexcept;

/// The store at a place: the address of a server, which gets the token with each request, or a folder.
/// \throws HttpException when the system's library for servers is missing
[[nodiscard]] std::unique_ptr<ResultStore> MakeResultStore(const std::string& place, const std::string& token);

} // namespace Orvanta
